#pragma once

#include <cstdint>
#include <optional>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// What inspection tells of one worksheet.
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
