#include "DocumentRuntime/Workbook/WorksheetContents.hpp"

#include <algorithm>

namespace zelvo {
namespace {

/// Sorts the spans and joins those that overlap. Files repeat spans; without this step each look-up would
/// visit every repetition.
void joinOverlaps(std::vector<ColumnSpan>& spans) {
  std::ranges::sort(spans, {}, &ColumnSpan::first);
  std::size_t joined = 0;
  for (const ColumnSpan& span : spans) {
    if (joined > 0 && span.first <= spans[joined - 1].last) {
      spans[joined - 1].last = std::max(spans[joined - 1].last, span.last);
    } else {
      spans[joined++] = span;
    }
  }
  spans.resize(joined);
}

}  // namespace

WorksheetContents::WorksheetContents(XMLNode worksheet, const CellRange& area) : area_(area) {
  walkWorksheet(worksheet, *this);
  // Programs write rows and cells in order; the format does not require it.
  if (!std::ranges::is_sorted(cells_, {}, &Cell::address)) std::ranges::sort(cells_, {}, &Cell::address);
  std::ranges::sort(hiddenRows_);
  joinOverlaps(hiddenColumns_);
}

bool WorksheetContents::isHiddenRow(std::int64_t row) const {
  return std::ranges::binary_search(hiddenRows_, row);
}

bool WorksheetContents::hasHiddenColumns(const CellRange& range) const {
  const auto span = std::ranges::lower_bound(hiddenColumns_, range.first.column, {}, &ColumnSpan::last);
  return span != hiddenColumns_.end() && span->first <= range.last.column;
}

bool WorksheetContents::hasMergedCells(const CellRange& range) const {
  return std::ranges::any_of(mergedAreas_, [&](const CellRange& area) { return area.intersects(range); });
}

void WorksheetContents::row(const WorksheetRow& row) {
  if (!row.hidden) return;
  anyRowHidden_ = true;
  if (row.number >= area_.first.row && row.number <= area_.last.row) hiddenRows_.push_back(row.number);
}

void WorksheetContents::cell(const CellAddress& address, XMLNode cell) {
  if (area_.contains(address)) cells_.push_back({address, cell});
}

void WorksheetContents::hiddenColumns(const ColumnSpan& columns) {
  if (columns.first <= area_.last.column && columns.last >= area_.first.column) {
    hiddenColumns_.push_back(columns);
  }
}

void WorksheetContents::mergedArea(const CellRange& area) {
  if (area_.intersects(area)) mergedAreas_.push_back(area);
}

}  // namespace zelvo
