#include "DocumentRuntime/Workbook/TableExtraction.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

std::int64_t widthOf(const CellRange& range) {
  return range.last.column - range.first.column + 1;
}
std::int64_t heightOf(const CellRange& range) {
  return range.last.row - range.first.row + 1;
}

/// Limit of all texts of one table, in bytes: the size of the largest response. Cells share strings and
/// formats, so without this limit a table could be a thousand times larger than its workbook.
constexpr std::size_t maximumTableBytes = std::size_t{40} * 1024 * 1024;

std::size_t textBytes(const SourceCell& cell) {
  return cell.value.payload().size() + (cell.formula ? cell.formula->size() : 0) +
         (cell.numberFormat ? cell.numberFormat->size() : 0);
}

std::vector<std::vector<SourceCell>> readRows(const WorksheetContents& contents, const CellRange& range,
                                              const TableSelection& selection, const CellReader& reader,
                                              const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                              const std::stop_token& stop) {
  std::vector<std::vector<SourceCell>> rows;
  std::size_t tableBytes = 0;
  for (std::int64_t row = range.first.row; row <= range.last.row; ++row) {
    throwIfCancelled(stop);
    const bool hidden = contents.isHiddenRow(row);
    if (hidden && !selection.includeHiddenRows) continue;
    std::vector<SourceCell>& cells = rows.emplace_back();
    auto next =
        std::ranges::lower_bound(contents.cells(), CellAddress{.column = range.first.column, .row = row}, {},
                                 &WorksheetContents::Cell::address);
    for (std::int64_t column = range.first.column; column <= range.last.column; ++column) {
      const CellAddress address{.column = column, .row = row};
      std::optional<XMLNode> element;
      if (next != contents.cells().end() && next->address == address) element = (next++)->element;
      cells.push_back(reader.cell(element, address,
                                  {.hidden = hidden,
                                   .allowCache = selection.allowCachedFormulaValues,
                                   .acceptEmptyFormula = acceptedEmptyFormulaCells.contains(address)}));
      tableBytes += textBytes(cells.back());
      if (tableBytes > maximumTableBytes) throw ResponseTooLarge();
    }
  }
  return rows;
}

/// Turns the first kept row into the column titles.
void takeHeader(SourceTable& table) {
  for (const SourceCell& cell : table.rows.front()) {
    std::string title = cell.displayText();
    if (Unicode::trimmed(title).empty() ||
        Unicode::exceeds(title, TableExtraction::maximumHeaderCharacters)) {
      throw DocumentError::invalidSelection(Refusal::header);
    }
    table.columns.push_back(std::move(title));
    table.headerUsesCachedFormulaValues |= cell.usesCachedFormulaValue;
  }
  table.rows.erase(table.rows.begin());
}

void nameColumns(SourceTable& table, const CellRange& range) {
  for (std::int64_t column = range.first.column; column <= range.last.column; ++column) {
    table.columns.push_back("Column " + columnLetters(column));
  }
}

void addWarnings(SourceTable& table, const WorksheetContents& contents, bool includeHiddenRows) {
  table.warnings.emplace_back("Source is the saved file snapshot.");
  if (table.usesCachedFormulaValues()) {
    table.warnings.emplace_back("Formula results are saved cached values; their freshness is unknown.");
  }
  if (contents.hasAutoFilter()) {
    table.warnings.emplace_back(
        "Filter visibility follows saved row visibility; filter predicates are not recalculated.");
  }
  if (contents.hasHiddenRows() && !includeHiddenRows)
    table.warnings.emplace_back("Hidden rows are excluded.");
}

}  // namespace

CellRange TableExtraction::selectedRange(const TableSelection& selection) {
  const CellRange range = CellRange::parse(selection.range);
  const std::int64_t minimumRows = selection.firstRowIsHeader ? 2 : 1;
  if (widthOf(range) > maximumColumns || heightOf(range) > maximumRows || heightOf(range) < minimumRows) {
    throw DocumentError::resourceLimit(Refusal::selectionTooLarge);
  }
  return range;
}

SourceTable TableExtraction::read(const WorksheetContents& contents, const CellRange& range,
                                  const TableSelection& selection, const CellReader& reader,
                                  const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                  const std::stop_token& stop) {
  if (contents.hasMergedCells(range)) throw DocumentError::unsupported(Refusal::mergedCells);
  if (contents.hasHiddenColumns(range)) {
    throw DocumentError::invalidSelection(Refusal::hiddenColumns);
  }

  SourceTable table;
  table.rows = readRows(contents, range, selection, reader, acceptedEmptyFormulaCells, stop);
  if (table.rows.empty()) throw DocumentError::invalidSelection(Refusal::noVisibleRows);
  if (selection.firstRowIsHeader) {
    if (contents.isHiddenRow(range.first.row) && !selection.includeHiddenRows) {
      throw DocumentError::invalidSelection(Refusal::hiddenHeader);
    }
    takeHeader(table);
  } else {
    nameColumns(table, range);
  }
  if (table.rows.empty()) throw DocumentError::invalidSelection(Refusal::noDataRows);
  addWarnings(table, contents, selection.includeHiddenRows);
  return table;
}

}  // namespace zelvo
