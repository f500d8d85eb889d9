#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zelvo {

/// Finds repeated rows, and repeated cells within a row. A cell must be in the row of its address and rows
/// are unique, so cells of different rows cannot be equal.
class IdentityCheck {
 public:
  /// `row`, and `column` below, must be within the sheet's bounds, which bound the memory used here.
  bool isNewRow(std::int64_t row) {
    ++rowOrdinal_;
    std::vector<bool>::reference seen = at(seenRows_, row);
    const bool isNew = !seen;
    seen = true;
    return isNew;
  }

  bool isNewCellInRow(std::int64_t column) {
    std::uint32_t& lastRow = at(lastRowWith_, column);
    const bool isNew = lastRow != rowOrdinal_;
    lastRow = rowOrdinal_;
    return isNew;
  }

 private:
  /// Grows the list to the highest index: most sheets are small.
  template <typename Items>
  static typename Items::reference at(Items& items, std::int64_t index) {
    const auto position = static_cast<std::size_t>(index);
    if (position >= items.size()) items.resize(std::max(position + 1, 2 * items.size()));
    return items[position];
  }

  std::vector<bool> seenRows_;
  /// By column: the ordinal of the last row that had a cell there. Saves clearing a bitmap for every row.
  std::vector<std::uint32_t> lastRowWith_;
  std::uint32_t rowOrdinal_ = 0;
};

}  // namespace zelvo
