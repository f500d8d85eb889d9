#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zelvo::Cleaning {

/// Appends the formula as it reads in a cell that lies so many rows below and columns right of its own:
/// relative references are moved, absolute ones stay, and a reference that leaves the sheet becomes #REF!.
/// Nothing is appended beyond `maximumBytes`; then this returns false.
bool appendMoved(std::string& out, std::string_view formula, std::int64_t rows, std::int64_t columns,
                 std::size_t maximumBytes);

}  // namespace zelvo::Cleaning
