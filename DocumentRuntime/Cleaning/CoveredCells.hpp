#pragma once

#include <cstdint>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"

namespace zelvo::Cleaning {

/// How many of the cells lie in a merged area without being its first cell. Takes n log n time, however the
/// areas overlap.
std::int64_t countCoveredCells(std::vector<CellRange> areas, std::vector<CellAddress> cells);

}  // namespace zelvo::Cleaning
