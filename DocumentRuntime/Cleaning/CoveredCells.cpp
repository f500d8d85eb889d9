#include "DocumentRuntime/Cleaning/CoveredCells.hpp"

#include <algorithm>
#include <cstddef>

namespace zelvo::Cleaning {
namespace {

/// Counts the areas that cover each column of the current row: prefix sums of differences, in a binary
/// indexed tree.
class ColumnCover {
 public:
  void add(const CellRange& area, std::int64_t change) {
    addFrom(area.first.column, change);
    addFrom(area.last.column + 1, -change);
  }
  std::int64_t over(std::int64_t column) const {
    std::int64_t sum = 0;
    for (; column > 0; column -= column & -column)
      sum += differences_[static_cast<std::size_t>(column)];
    return sum;
  }

 private:
  void addFrom(std::int64_t column, std::int64_t change) {
    for (; column <= CellAddress::maximumColumn; column += column & -column)
      differences_[static_cast<std::size_t>(column)] += change;
  }

  std::vector<std::int64_t> differences_ = std::vector<std::int64_t>(CellAddress::maximumColumn + 1);
};

}  // namespace

std::int64_t countCoveredCells(std::vector<CellRange> areas, std::vector<CellAddress> cells) {
  std::vector<CellRange> byLastRow = areas;
  const auto firstCell = [](const CellRange& area) { return area.first; };
  std::ranges::sort(areas, {}, firstCell);
  std::ranges::sort(byLastRow, {}, [](const CellRange& area) { return area.last.row; });
  std::ranges::sort(cells);

  ColumnCover cover;
  std::size_t started = 0;
  std::size_t ended = 0;
  std::int64_t covered = 0;
  for (const CellAddress& cell : cells) {
    for (; started < areas.size() && areas[started].first.row <= cell.row; ++started)
      cover.add(areas[started], 1);
    for (; ended < byLastRow.size() && byLastRow[ended].last.row < cell.row; ++ended)
      cover.add(byLastRow[ended], -1);
    const auto ownAreas = std::ranges::upper_bound(areas, cell, {}, firstCell) -
                          std::ranges::lower_bound(areas, cell, {}, firstCell);
    if (cover.over(cell.column) > ownAreas) ++covered;
  }
  return covered;
}

}  // namespace zelvo::Cleaning
