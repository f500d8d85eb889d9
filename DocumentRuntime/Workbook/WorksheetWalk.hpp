#pragma once

#include <cstdint>
#include <optional>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* rowIdentity = "worksheet row identity";
inline constexpr const char* cellWithoutAddress = "cell without address";
inline constexpr const char* cellCount = "populated cell count";

}  // namespace RefusalDetail

inline constexpr std::int64_t maximumWorksheetCells = 50'000;

struct WorksheetRow {
  std::int64_t number;  ///< one-based
  bool hidden;
};

/// Columns from `first` to `last`, both included, one-based. Not validated.
struct ColumnSpan {
  std::int64_t first;
  std::int64_t last;
};

/// Visitor of a worksheet. Called for rows with their cells, then hidden columns, merged areas and the
/// filter, each in document order.
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

/// Walks a whole worksheet part, and checks that rows and cells are unique. Throws `DocumentError`:
/// invalidArchive "worksheet row identity", "cell without address" or "duplicate cell or mismatched row",
/// resourceLimit "populated cell count", and the errors of addresses and ranges.
void walkWorksheet(XMLNode worksheet, WorksheetVisitor& visitor);

/// The results of inspecting one worksheet.
struct WorksheetFacts {
  std::optional<CellRange> populatedRange;  ///< the smallest rectangle around all cells
  std::int64_t populatedCellCount = 0;
  std::int64_t formulaCellCount = 0;
  std::int64_t formulasMissingCache = 0;
  bool hasHiddenRowsOrColumns = false;
  bool hasAutoFilter = false;

  /// Reads a whole worksheet part. Throws what walking it throws.
  static WorksheetFacts read(XMLNode worksheet);
};

}  // namespace zelvo
