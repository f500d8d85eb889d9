#pragma once

#include <cstdint>

#include "DocumentRuntime/Research/Dataset/Formula.hpp"

namespace zelvo {

/// Checks that a node has the fields that its operation asks for and no other, in a table of so many rows and
/// columns; its arguments are not looked into. Throws `DocumentError` validationFailed.
///
/// Afterwards a cell has its row and column, a range its corners, the far one inside the table and nowhere
/// before the near one; either may still begin below zero.
void checkFormulaShape(const Formula& node, std::int64_t rows, std::int64_t columns);

}  // namespace zelvo
