#pragma once

#include <cstdint>
#include <string_view>

namespace zelvo::CleaningReadBack {

/// Whether `copy` is the formula `master` copied to a cell `rows` below and `columns` right of its own:
/// relative references are moved, or #REF! if that leaves the sheet, and everything else is equal.
bool isMovedCopy(std::string_view master, std::string_view copy, std::int64_t rows, std::int64_t columns);

}  // namespace zelvo::CleaningReadBack
