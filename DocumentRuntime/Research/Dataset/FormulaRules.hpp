#pragma once

#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Formula.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo {

/// Checks that a node has exactly the fields of its operation, in a table of this size. Does not check its
/// arguments. Throws `DocumentError` validationFailed.
///
/// Afterwards a cell has its row and column, and a range its corners: the last is inside the table and not
/// before the first; either may still be below zero.
void checkFormulaShape(const Formula& node, std::int64_t rows, std::int64_t columns);

/// The units of the columns that a formula reads, the empty unit for columns without one; constants and
/// counts have no unit. Views into the columns. Throws `DocumentError` resourceLimit "formula unit
/// dependencies" for a tree that is too deep, and validationFailed for columns that do not exist.
std::set<std::string_view> formulaUnits(const Formula& formula,
                                        const std::vector<ResearchSpreadsheet::Column>& columns);

}  // namespace zelvo
