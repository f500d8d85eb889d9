#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "zelvo/CommandLine/CommandLine.hpp"

namespace zelvo {
namespace {

/// No command or option is so long. Bounds the time, which is quadratic.
constexpr std::size_t longestName = 64;

/// The optimal string alignment distance.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> twoAbove(b.size() + 1);
  std::vector<std::size_t> above(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(above.begin(), above.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t replaced = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], twoAbove[j - 2] + 1);
    }
    std::swap(twoAbove, above);
    std::swap(above, row);
  }
  return above[b.size()];
}

}  // namespace

std::string nearestName(std::string_view given, const std::vector<std::string>& names) {
  if (given.size() > longestName) return {};
  std::string nearest;
  std::size_t least = std::max<std::size_t>(given.size() / 3, 1) + 1;
  for (const std::string& name : names) {
    if (const std::size_t changes = distance(given, name); changes < least) {
      least = changes;
      nearest = name;
    }
  }
  return nearest;
}

}  // namespace zelvo
