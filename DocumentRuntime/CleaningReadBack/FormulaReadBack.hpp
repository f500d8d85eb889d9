#pragma once

#include <cstdint>
#include <string_view>

namespace zelvo::CleaningReadBack {

/// Whether `copy`, moved back by so many rows and columns, is `master`: its relative references are those of
/// the master, moved, or #REF! where that leaves the sheet, and everything else is equal.
bool isMovedCopy(std::string_view master, std::string_view copy, std::int64_t rows, std::int64_t columns);

}  // namespace zelvo::CleaningReadBack
