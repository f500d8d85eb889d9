#pragma once

#include <set>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo {

/// The units of the columns that a formula reads, the empty unit for columns without one; constants and
/// counts have none. Views into the columns. Throws `DocumentError` resourceLimit "formula unit dependencies"
/// for a tree that is too deep, and validationFailed for columns that are not there.
std::set<std::string_view> formulaUnits(const Formula& formula,
                                        const std::vector<ResearchSpreadsheet::Column>& columns);

}  // namespace zelvo
