#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

namespace zelvo {

/// The cells of an area of a worksheet, and the features that affect the tables of it, from one walk. The
/// tree of the worksheet must outlive it.
class WorksheetContents final : private WorksheetVisitor {
 public:
  struct Cell {
    CellAddress address;
    XMLNode element;
  };

  /// Walks the whole worksheet; throws what `walkWorksheet` throws. Features outside `area` are not recorded,
  /// except hidden rows and the filter, which concern the whole sheet.
  WorksheetContents(XMLNode worksheet, const CellRange& area);

  /// The cells of the area in row-major order.
  const std::vector<Cell>& cells() const { return cells_; }
  bool isHiddenRow(std::int64_t row) const;
  /// The numbers of the hidden rows of the area, in ascending order.
  const std::vector<std::int64_t>& hiddenRows() const { return hiddenRows_; }
  /// Whether any row of the sheet is hidden.
  bool hasHiddenRows() const { return anyRowHidden_; }
  bool hasHiddenColumns(const CellRange& range) const;
  /// In ascending order, without overlaps. They may reach beyond the area and beyond a sheet's columns.
  const std::vector<ColumnSpan>& hiddenColumns() const { return hiddenColumns_; }
  bool hasMergedCells(const CellRange& range) const;
  /// Those that intersect the area, in document order.
  const std::vector<CellRange>& mergedAreas() const { return mergedAreas_; }
  bool hasAutoFilter() const { return hasAutoFilter_; }

 private:
  void row(const WorksheetRow& row) override;
  void cell(const CellAddress& address, XMLNode cell) override;
  void hiddenColumns(const ColumnSpan& columns) override;
  void mergedArea(const CellRange& area) override;
  void autoFilter() override { hasAutoFilter_ = true; }

  CellRange area_;
  std::vector<Cell> cells_;
  std::vector<std::int64_t> hiddenRows_;   ///< sorted
  std::vector<ColumnSpan> hiddenColumns_;  ///< sorted, without overlaps
  std::vector<CellRange> mergedAreas_;
  bool anyRowHidden_ = false;
  bool hasAutoFilter_ = false;
};

}  // namespace zelvo
