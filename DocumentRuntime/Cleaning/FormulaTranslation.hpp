#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zelvo::Cleaning {

/// Appends the formula as copied to a cell `rows` below and `columns` right of its own: relative references
/// are moved, absolute ones stay, and a reference that leaves the sheet becomes #REF!. Stops and returns
/// false once the appended text is longer than `maximumBytes`.
bool appendMoved(std::string& out, std::string_view formula, std::int64_t rows, std::int64_t columns,
                 std::size_t maximumBytes);

}  // namespace zelvo::Cleaning
