#pragma once

#include <cstdint>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

inline constexpr std::int64_t maximumWorksheetCells = 50'000;

struct WorksheetRow {
  std::int64_t number;  ///< one-based
  bool hidden;
};

/// Columns from `first` to `last`, both included, one-based as far as the file is sane.
struct ColumnSpan {
  std::int64_t first;
  std::int64_t last;
};

/// Is told what a worksheet holds, in document order: rows with their cells, then hidden columns, merged
/// areas, the filter.
class WorksheetVisitor {
 public:
  WorksheetVisitor() = default;
  WorksheetVisitor(const WorksheetVisitor&) = delete;
  WorksheetVisitor& operator=(const WorksheetVisitor&) = delete;
  virtual ~WorksheetVisitor() = default;

  virtual void row(const WorksheetRow& row) = 0;
  virtual void cell(const CellAddress& address, XMLNode cell) = 0;
  virtual void hiddenColumns(const ColumnSpan& columns) = 0;
  virtual void mergedArea(const CellRange& area) = 0;
  virtual void autoFilter() = 0;
};

/// Walks a whole worksheet part and checks its identities on the way. Throws `DocumentError`: invalidArchive
/// "worksheet row identity", "cell without address" or "duplicate cell or mismatched row", resourceLimit
/// "populated cell count", and the errors of addresses and ranges.
void walkWorksheet(XMLNode worksheet, WorksheetVisitor& visitor);

}  // namespace zelvo
