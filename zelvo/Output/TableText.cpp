#include "zelvo/Output/TableText.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

#include "Text/ASCII.hpp"
#include "zelvo/Output/TerminalText.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

constexpr char cachedMark = '*';

/// Right if the column has a number, so that digits of the same place are aligned.
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

/// The row's number in the sheet.
std::string rowNumber(const std::vector<SourceCell>& row) {
  const std::string_view address = row.empty() ? std::string_view() : row.front().address;
  return std::string(address.substr(std::min(address.find_first_of(ASCII::decimalDigits), address.size())));
}

bool isHidden(const std::vector<SourceCell>& row) {
  return std::ranges::any_of(row, &SourceCell::hidden);
}

/// The cells under their titles. In a column with marks, unmarked texts end with a space in place of the
/// mark, so that digits are aligned.
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
  return rows.text();
}

std::string footnotes(const SourceTable& table) {
  std::string text;
  bool hasMark = false;
  for (std::size_t column = 0; column < table.columns.size(); ++column)
    hasMark |= hasCachedValue(table, column);
  if (hasMark) text += indentedLine("* the saved result of a formula");
  if (table.headerUsesCachedFormulaValues) text += indentedLine("Titles are saved results of formulas.");
  return text.empty() ? text : "\n" + text;
}

std::string factTable(const SourceTable& table) {
  TextTable facts({left, left});
  facts.addRow({"Sheet", table.sheetName});
  facts.addRow({"Range", table.selectedRange});
  facts.addRow({"SHA-256", table.sourceSHA256});
  return facts.text();
}

std::string csvField(const std::string& text, bool isForTerminal) {
  if (text.find_first_of("\",\r\n") == std::string::npos) return isForTerminal ? printable(text) : text;
  std::string field = "\"";
  for (const char c : isForTerminal ? printable(text) : text)
    field.append(c == '"' ? 2 : 1, c);
  return field + '"';
}

std::string csvLine(const std::vector<std::string>& texts, bool isForTerminal) {
  // Many readers skip an empty line.
  if (texts.size() == 1 && texts.front().empty()) return "\"\"\r\n";
  std::string line;
  for (const std::string& text : texts)
    line += (&text == &texts.front() ? "" : ",") + csvField(text, isForTerminal);
  return line + "\r\n";
}

}  // namespace

std::string describe(const SourceTable& table, const std::string& notes) {
  return cellTable(table) + footnotes(table) + "\n" + factTable(table) + notes + warningLines(table.warnings);
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
