#include "zelvo/TableText.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

#include "zelvo/TerminalText.hpp"
#include "zelvo/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

constexpr std::size_t indent = 2;
constexpr char cachedMark = '*';

/// Numbers are read from their last digit, so that one is enough to align a column by it.
TextTable::Align alignOf(const SourceTable& table, std::size_t column) {
  const bool hasNumber = std::ranges::any_of(table.rows, [&](const std::vector<SourceCell>& row) {
    return column < row.size() && row[column].value.kind() == SourceCellValue::Kind::number;
  });
  return hasNumber ? right : left;
}

bool hasCachedValue(const SourceTable& table, std::size_t column) {
  return std::ranges::any_of(table.rows, [&](const std::vector<SourceCell>& row) {
    return column < row.size() && row[column].usesCachedFormulaValue;
  });
}

/// The number of the sheet's row.
std::string rowNumber(const std::vector<SourceCell>& row) {
  const std::string_view address = row.empty() ? std::string_view() : row.front().address;
  return std::string(address.substr(std::min(address.find_first_of("0123456789"), address.size())));
}

bool isHidden(const std::vector<SourceCell>& row) {
  return std::ranges::any_of(row, &SourceCell::hidden);
}

/// The cells under their titles. Where a column has marks, the other texts leave the mark's place free, so
/// that digits stand below digits.
std::string cellTable(const SourceTable& table) {
  std::vector<TextTable::Align> aligns = {right};
  std::vector<bool> hasMarks;
  std::vector<std::string> texts = {"Row"};
  for (std::size_t column = 0; column < table.columns.size(); ++column) {
    aligns.push_back(alignOf(table, column));
    hasMarks.push_back(hasCachedValue(table, column));
    texts.push_back(table.columns[column] + (hasMarks[column] ? " " : ""));
  }
  aligns.push_back(left);
  texts.emplace_back();

  TextTable rows(aligns);
  rows.addRow(texts);
  for (const std::vector<SourceCell>& row : table.rows) {
    texts = {rowNumber(row)};
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
      std::string& text = texts.emplace_back();
      if (column < row.size()) text = row[column].displayText();
      if (hasMarks[column])
        text += column < row.size() && row[column].usesCachedFormulaValue ? cachedMark : ' ';
    }
    texts.emplace_back(isHidden(row) ? "hidden" : "");
    rows.addRow(texts);
  }
  return rows.text(indent);
}

std::string footnotes(const SourceTable& table) {
  std::string text;
  const auto add = [&](std::string_view note) { text.append(indent, ' ').append(note) += '\n'; };
  bool hasMark = false;
  for (std::size_t column = 0; column < table.columns.size(); ++column)
    hasMark |= hasCachedValue(table, column);
  if (hasMark) add("* the saved result of a formula");
  if (table.headerUsesCachedFormulaValues) add("Titles are saved results of formulas.");
  return text.empty() ? text : "\n" + text;
}

std::string factTable(const SourceTable& table) {
  TextTable facts({left, left});
  facts.addRow({"Sheet", table.sheetName});
  facts.addRow({"Range", table.selectedRange});
  facts.addRow({"SHA-256", table.sourceSHA256});
  return facts.text(indent);
}

std::string csvField(const std::string& text, bool isForTerminal) {
  if (text.find_first_of("\",\r\n") == std::string::npos) return isForTerminal ? printable(text) : text;
  std::string field = "\"";
  for (const char c : isForTerminal ? printable(text) : text)
    field.append(c == '"' ? 2 : 1, c);
  return field + '"';
}

std::string csvLine(const std::vector<std::string>& texts, bool isForTerminal) {
  // An empty line would be no record to many readers.
  if (texts.size() == 1 && texts.front().empty()) return "\"\"\r\n";
  std::string line;
  for (const std::string& text : texts)
    line += (&text == &texts.front() ? "" : ",") + csvField(text, isForTerminal);
  return line + "\r\n";
}

}  // namespace

std::string describe(const SourceTable& table) {
  std::string text = cellTable(table) + footnotes(table) + "\n" + factTable(table);
  if (!table.warnings.empty()) text += "\n";
  for (const std::string& warning : table.warnings)
    text += std::string(indent, ' ') + "Warning: " + printable(warning) + "\n";
  return text;
}

std::string csv(const SourceTable& table, bool isForTerminal) {
  std::string text = csvLine(table.columns, isForTerminal);
  for (const std::vector<SourceCell>& row : table.rows) {
    std::vector<std::string> texts(row.size());
    std::ranges::transform(row, texts.begin(), &SourceCell::displayText);
    text += csvLine(texts, isForTerminal);
  }
  return text;
}

}  // namespace zelvo
