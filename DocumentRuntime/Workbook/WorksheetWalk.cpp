#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

#include "DocumentRuntime/Cells/IdentityCheck.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"

namespace zelvo {
namespace {

void walkRows(XMLNode sheetData, WorksheetVisitor& visitor) {
  IdentityCheck identities;
  std::int64_t cellCount = 0;
  for (const XMLNode row : sheetData.all("row")) {
    const auto number = xmlInteger(row.attribute("r"));
    if (!number || *number < 1 || *number > CellAddress::maximumRow || !identities.isNewRow(*number)) {
      throw DocumentError::invalidArchive(RefusalDetail::rowIdentity);
    }
    visitor.row({*number, xmlFlag(row.attribute("hidden"))});
    for (const XMLNode cell : row.all("c")) {
      const auto reference = cell.attribute("r");
      if (!reference) throw DocumentError::invalidArchive(RefusalDetail::cellWithoutAddress);
      const CellAddress address = CellAddress::parse(*reference);
      if (address.row != *number || !identities.isNewCellInRow(address.column)) {
        throw DocumentError::invalidArchive("duplicate cell or mismatched row");
      }
      if (++cellCount > maximumWorksheetCells) throw DocumentError::resourceLimit(RefusalDetail::cellCount);
      visitor.cell(address, cell);
    }
  }
}

void walkColumns(XMLNode columns, WorksheetVisitor& visitor) {
  for (const XMLNode column : columns.all("col")) {
    if (!xmlFlag(column.attribute("hidden"))) continue;
    const auto first = xmlInteger(column.attribute("min"));
    const auto last = xmlInteger(column.attribute("max"));
    if (first && last && *first <= *last) visitor.hiddenColumns({*first, *last});
  }
}

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

void walkWorksheet(XMLNode worksheet, WorksheetVisitor& visitor) {
  if (const auto sheetData = worksheet.child("sheetData")) walkRows(*sheetData, visitor);
  if (const auto columns = worksheet.child("cols")) walkColumns(*columns, visitor);
  if (const auto mergedCells = worksheet.child("mergeCells")) {
    for (const XMLNode merged : mergedCells->all("mergeCell")) {
      if (const auto area = merged.attribute("ref")) visitor.mergedArea(CellRange::parse(*area));
    }
  }
  if (worksheet.child("autoFilter")) visitor.autoFilter();
}

WorksheetFacts WorksheetFacts::read(XMLNode worksheet) {
  FactsCollector collector;
  walkWorksheet(worksheet, collector);
  return collector.facts;
}

}  // namespace zelvo
