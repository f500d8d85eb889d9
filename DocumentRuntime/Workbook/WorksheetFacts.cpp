#include "DocumentRuntime/Workbook/WorksheetFacts.hpp"

#include <algorithm>

#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

namespace zelvo {
namespace {

void include(std::optional<CellRange>& range, const CellAddress& address) {
  if (!range) {
    range = CellRange{address, address};
    return;
  }
  range->first = {std::min(range->first.column, address.column), std::min(range->first.row, address.row)};
  range->last = {std::max(range->last.column, address.column), std::max(range->last.row, address.row)};
}

class FactsCollector final : public WorksheetVisitor {
 public:
  WorksheetFacts facts;

  void row(const WorksheetRow& row) override { facts.hasHiddenRowsOrColumns |= row.hidden; }

  void cell(const CellAddress& address, XMLNode cell) override {
    include(facts.populatedRange, address);
    ++facts.populatedCellCount;
    if (!cell.child("f")) return;
    ++facts.formulaCellCount;
    const auto value = cell.child("v");
    if (!value || !value->hasContent()) ++facts.formulasMissingCache;
  }

  void hiddenColumns(const ColumnSpan& /*columns*/) override { facts.hasHiddenRowsOrColumns = true; }
  void mergedArea(const CellRange& /*area*/) override {}
  void autoFilter() override { facts.hasAutoFilter = true; }
};

}  // namespace

WorksheetFacts WorksheetFacts::read(XMLNode worksheet) {
  FactsCollector collector;
  walkWorksheet(worksheet, collector);
  return collector.facts;
}

}  // namespace zelvo
