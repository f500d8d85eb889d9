#include "DocumentRuntime/Workbook/TableExtraction.hpp"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

std::int64_t widthOf(const CellRange& range) {
  return range.last.column - range.first.column + 1;
}
std::int64_t heightOf(const CellRange& range) {
  return range.last.row - range.first.row + 1;
}

/// Collects the cells of one range in a grid, and the features of the worksheet that affect it.
class RangeCollector final : public WorksheetVisitor {
 public:
  explicit RangeCollector(const CellRange& range)
      : range_(range),
        width_(static_cast<std::size_t>(widthOf(range))),
        cells_(width_ * static_cast<std::size_t>(heightOf(range))),
        hiddenRows_(static_cast<std::size_t>(heightOf(range))) {}

  std::optional<XMLNode> cell(std::size_t row, std::size_t column) const {
    return cells_[row * width_ + column];
  }
  bool isHidden(std::size_t row) const { return hiddenRows_[row]; }

  bool anyRowHidden = false;  ///< of the whole sheet
  bool mergedInRange = false;
  bool hiddenColumnInRange = false;
  bool hasAutoFilter = false;

  void row(const WorksheetRow& row) override {
    anyRowHidden |= row.hidden;
    if (row.hidden && row.number >= range_.first.row && row.number <= range_.last.row) {
      hiddenRows_[static_cast<std::size_t>(row.number - range_.first.row)] = true;
    }
  }
  void cell(const CellAddress& address, XMLNode cell) override {
    if (!range_.contains(address)) return;
    const auto row = static_cast<std::size_t>(address.row - range_.first.row);
    const auto column = static_cast<std::size_t>(address.column - range_.first.column);
    cells_[row * width_ + column] = cell;
  }
  void hiddenColumns(const ColumnSpan& columns) override {
    hiddenColumnInRange |= columns.first <= range_.last.column && columns.last >= range_.first.column;
  }
  void mergedArea(const CellRange& area) override { mergedInRange |= range_.intersects(area); }
  void autoFilter() override { hasAutoFilter = true; }

 private:
  CellRange range_;
  std::size_t width_;
  std::vector<std::optional<XMLNode>> cells_;
  std::vector<bool> hiddenRows_;
};

/// Limit of all texts of one table, in bytes: the size of the largest response. Cells share strings and
/// formats, so without this limit a table could be a thousand times larger than its workbook.
constexpr std::size_t maximumTableBytes = std::size_t{40} * 1024 * 1024;

std::size_t textBytes(const SourceCell& cell) {
  return cell.value.payload().size() + (cell.formula ? cell.formula->size() : 0) +
         (cell.numberFormat ? cell.numberFormat->size() : 0);
}

std::vector<std::vector<SourceCell>> readRows(const RangeCollector& contents, const CellRange& range,
                                              const TableSelection& selection, const CellReader& reader,
                                              const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                              const std::stop_token& stop) {
  std::vector<std::vector<SourceCell>> rows;
  std::size_t tableBytes = 0;
  for (std::size_t row = 0; std::cmp_less(row, heightOf(range)); ++row) {
    throwIfCancelled(stop);
    const bool hidden = contents.isHidden(row);
    if (hidden && !selection.includeHiddenRows) continue;
    std::vector<SourceCell>& cells = rows.emplace_back();
    for (std::size_t column = 0; std::cmp_less(column, widthOf(range)); ++column) {
      const CellAddress address{.column = range.first.column + static_cast<std::int64_t>(column),
                                .row = range.first.row + static_cast<std::int64_t>(row)};
      cells.push_back(reader.cell(contents.cell(row, column), address,
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
      throw DocumentError::invalidSelection(RefusalDetail::header);
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

void addWarnings(SourceTable& table, const RangeCollector& contents, bool includeHiddenRows) {
  table.warnings.emplace_back("Source is the saved file snapshot.");
  if (table.usesCachedFormulaValues()) {
    table.warnings.emplace_back("Formula results are saved cached values; their freshness is unknown.");
  }
  if (contents.hasAutoFilter) {
    table.warnings.emplace_back(
        "Filter visibility follows saved row visibility; filter predicates are not recalculated.");
  }
  if (contents.anyRowHidden && !includeHiddenRows) table.warnings.emplace_back("Hidden rows are excluded.");
}

}  // namespace

CellRange TableExtraction::selectedRange(const TableSelection& selection) {
  const CellRange range = CellRange::parse(selection.range);
  const std::int64_t minimumRows = selection.firstRowIsHeader ? 2 : 1;
  if (widthOf(range) > maximumColumns || heightOf(range) > maximumRows || heightOf(range) < minimumRows) {
    throw DocumentError::resourceLimit(RefusalDetail::selectionTooLarge);
  }
  return range;
}

SourceTable TableExtraction::read(XMLNode worksheet, const CellRange& range, const TableSelection& selection,
                                  const CellReader& reader,
                                  const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                  const std::stop_token& stop) {
  RangeCollector contents(range);
  walkWorksheet(worksheet, contents);
  if (contents.mergedInRange) throw DocumentError::unsupported(RefusalDetail::mergedCells);
  if (contents.hiddenColumnInRange) {
    throw DocumentError::invalidSelection(RefusalDetail::hiddenColumns);
  }

  SourceTable table;
  table.rows = readRows(contents, range, selection, reader, acceptedEmptyFormulaCells, stop);
  if (table.rows.empty()) throw DocumentError::invalidSelection(RefusalDetail::noVisibleRows);
  if (selection.firstRowIsHeader) {
    if (contents.isHidden(0) && !selection.includeHiddenRows) {
      throw DocumentError::invalidSelection(RefusalDetail::hiddenHeader);
    }
    takeHeader(table);
  } else {
    nameColumns(table, range);
  }
  if (table.rows.empty()) throw DocumentError::invalidSelection(RefusalDetail::noDataRows);
  addWarnings(table, contents, selection.includeHiddenRows);
  return table;
}

}  // namespace zelvo
