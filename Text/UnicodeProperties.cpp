#include "Text/UnicodeProperties.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <unicode/uchar.h>

#include "Text/UnicodeTables.hpp"

namespace zelvo::Unicode {
namespace {

static_assert(
    tablesVersion == std::string_view(U_UNICODE_VERSION),
    "ICU is of another Unicode version than Text/UnicodeTables.hpp: run script/update-unicode-tables, and "
    "compare the rules of Text/GraphemeBreak.cpp with those of ICU's root locale");

/// The ranges are sorted and disjoint.
template <std::size_t Count>
bool contain(const ScalarRange (&ranges)[Count], char32_t scalar) {
  if (scalar < ranges[0].first || scalar > ranges[Count - 1].last) return false;
  const auto* const range =
      std::lower_bound(std::begin(ranges), std::end(ranges), scalar,
                       [](const ScalarRange& candidate, char32_t wanted) { return candidate.last < wanted; });
  return range->first <= scalar;
}

}  // namespace

bool isExtendedPictographic(char32_t scalar) {
  return contain(extendedPictographic, scalar);
}

bool isLinkingConsonant(char32_t scalar) {
  return contain(linkingConsonants, scalar);
}

bool isLinkingVirama(char32_t scalar) {
  return contain(linkingViramas, scalar);
}

}  // namespace zelvo::Unicode
