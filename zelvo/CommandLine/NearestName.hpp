#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelvo {

/// The name that was most likely meant by a mistyped one: the first with the fewest insertions, deletions,
/// replacements and swaps of neighbouring characters. Empty if more than a third of the characters differ.
std::string nearestName(std::string_view given, const std::vector<std::string>& names);

}  // namespace zelvo
