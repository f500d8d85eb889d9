#pragma once

#include <cstdint>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"

namespace zelvo::Cleaning {

/// Counts the cells that are in a merged area but are not its first cell. Takes O(n log n) time, also for
/// areas that overlap.
std::int64_t countCoveredCells(std::vector<CellRange> areas, std::vector<CellAddress> cells);

}  // namespace zelvo::Cleaning
