#include "zelvo/Extraction/AlignedRows.hpp"

#include <algorithm>
#include <vector>

#include "zelvo/Extraction/RowForms.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

constexpr char cachedMark = '*';

bool hasCachedValue(const SheetRows& rows, std::size_t column) {
  return std::ranges::any_of(dataRows(rows),
                             [&](const auto& row) { return row.cells[column].usesCachedFormulaValue; });
}

bool isHidden(const SheetRows::Row& row) {
  return std::ranges::any_of(row.cells, &SourceCell::hidden);
}

/// The rows under their titles.
class CellTable {
 public:
  CellTable(const SheetRows& rows, const CellTextOptions& options) : rows_(rows), options_(options) {
    for (std::size_t column = 0; column < rows.columns.size(); ++column)
      hasMarks_.push_back(hasCachedValue(rows, column));
    hasHidden_ = std::ranges::any_of(dataRows(rows), isHidden);
  }

  bool hasMarks() const { return std::ranges::count(hasMarks_, true) > 0; }

  TextTable table() const {
    std::vector<TextTable::Align> aligns = {right};
    for (std::size_t column = 0; column < rows_.columns.size(); ++column)
      aligns.push_back(hasNumber(rows_, column) ? right : left);
    if (hasHidden_) aligns.push_back(left);

    TextTable table(aligns);
    table.addRow(titles());
    for (const SheetRows::Row& row : dataRows(rows_))
      table.addRow(textsOf(row));
    return table;
  }

 private:
  std::vector<std::string> titles() const {
    std::vector<std::string> texts = {"Row"};
    const bool hasTitles = rows_.firstRowIsHeader && !rows_.rows.empty();
    for (std::size_t column = 0; column < rows_.columns.size(); ++column) {
      texts.push_back(hasTitles ? cellText(rows_.rows.front().cells[column], options_)
                                : columnLetters(rows_.columns[column]));
      if (hasMarks_[column]) texts.back() += ' ';
    }
    if (hasHidden_) texts.emplace_back();
    return texts;
  }

  /// In a column with marks, unmarked texts end with a space in place of the mark, so that digits are
  /// aligned.
  std::vector<std::string> textsOf(const SheetRows::Row& row) const {
    std::vector<std::string> texts = {std::to_string(row.number)};
    for (std::size_t column = 0; column < rows_.columns.size(); ++column) {
      const SourceCell& cell = row.cells[column];
      texts.push_back(cellText(cell, options_));
      if (hasMarks_[column]) texts.back() += cell.usesCachedFormulaValue ? cachedMark : ' ';
    }
    if (hasHidden_) texts.emplace_back(isHidden(row) ? "hidden" : "");
    return texts;
  }

  const SheetRows& rows_;
  const CellTextOptions& options_;
  std::vector<bool> hasMarks_;
  bool hasHidden_ = false;
};

bool hasCachedTitle(const SheetRows& rows) {
  return rows.firstRowIsHeader && !rows.rows.empty() &&
         std::ranges::any_of(rows.rows.front().cells, &SourceCell::usesCachedFormulaValue);
}

std::string factTable(const SheetRows& rows) {
  TextTable facts({left, left});
  facts.addRow({"Sheet", rows.sheetName});
  facts.addRow({"Range", rows.range.name()});
  facts.addRow({"SHA-256", rows.sourceSHA256});
  return facts.text();
}

}  // namespace

std::string describe(const SheetRows& rows, const CellTextOptions& options, std::size_t width,
                     const std::string& notes) {
  const CellTable cells(rows, options);
  const TextTable table = cells.table();
  std::string footnotes;
  if (cells.hasMarks()) footnotes += indentedLine("* the saved result of a formula");
  if (hasCachedTitle(rows)) footnotes += indentedLine("Titles are saved results of formulas.");
  if (table.isCut(width))
    footnotes +=
        indentedLine("Texts that end with … are cut to the terminal's width; --csv prints them whole.");
  if (!footnotes.empty()) footnotes.insert(0, "\n");
  return table.text(width) + footnotes + "\n" + factTable(rows) + notes + warningLines(rows.warnings);
}

}  // namespace zelvo
