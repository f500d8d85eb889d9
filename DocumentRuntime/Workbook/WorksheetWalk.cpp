#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

#include <algorithm>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"

namespace zelvo {
namespace {

/// Finds repeated rows, and cells repeated within a row: since a cell must stand in the row that its address
/// names and rows are unique, cells of different rows never collide.
class IdentityCheck {
 public:
  /// `row` must lie in the sheet's bounds, which bound the memory used here; so must `column` below.
  bool isNewRow(std::int64_t row) {
    ++rowOrdinal_;
    std::vector<bool>::reference seen = at(seenRows_, row);
    const bool isNew = !seen;
    seen = true;
    return isNew;
  }

  bool isNewCellInRow(std::int64_t column) {
    std::uint32_t& lastRow = at(lastRowWith_, column);
    const bool isNew = lastRow != rowOrdinal_;
    lastRow = rowOrdinal_;
    return isNew;
  }

 private:
  /// Most sheets are small: room grows with the highest index met.
  template <typename Items>
  static typename Items::reference at(Items& items, std::int64_t index) {
    const auto position = static_cast<std::size_t>(index);
    if (position >= items.size()) items.resize(std::max(position + 1, 2 * items.size()));
    return items[position];
  }

  std::vector<bool> seenRows_;
  /// By column: the ordinal of the last row that had a cell there. Saves clearing a bitmap for every row.
  std::vector<std::uint32_t> lastRowWith_;
  std::uint32_t rowOrdinal_ = 0;
};

void walkRows(XMLNode sheetData, WorksheetVisitor& visitor) {
  IdentityCheck identities;
  std::int64_t cellCount = 0;
  for (const XMLNode row : sheetData.all("row")) {
    const auto number = xmlInteger(row.attribute("r"));
    if (!number || *number < 1 || *number > CellAddress::maximumRow || !identities.isNewRow(*number)) {
      throw DocumentError::invalidArchive("worksheet row identity");
    }
    visitor.row({*number, xmlFlag(row.attribute("hidden"))});
    for (const XMLNode cell : row.all("c")) {
      const auto reference = cell.attribute("r");
      if (!reference) throw DocumentError::invalidArchive("cell without address");
      const CellAddress address = CellAddress::parse(*reference);
      if (address.row != *number || !identities.isNewCellInRow(address.column)) {
        throw DocumentError::invalidArchive("duplicate cell or mismatched row");
      }
      if (++cellCount > maximumWorksheetCells) throw DocumentError::resourceLimit("populated cell count");
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

}  // namespace zelvo
