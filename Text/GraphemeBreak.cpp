#include "Text/GraphemeBreak.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <new>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include "Text/Unicode.hpp"
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

/// A consonant of an Indic script whose conjuncts (consonant, virama, consonant) are one character.
bool isLinkingConsonant(char32_t scalar) {
  return contain(linkingConsonants, scalar);
}

/// The virama of such a script.
bool isLinkingVirama(char32_t scalar) {
  return contain(linkingViramas, scalar);
}

/// Grapheme_Cluster_Break, a `UGraphemeClusterBreak`. The library has this property in its code.
using BreakClass = int;

BreakClass breakClassOf(char32_t scalar) {
  if (scalar >= 0x20 && scalar < 0x7F) return U_GCB_OTHER;
  return u_getIntPropertyValue(static_cast<UChar32>(scalar), UCHAR_GRAPHEME_CLUSTER_BREAK);
}

/// Canonical_Combining_Class. `u_getCombiningClass` would return 0 when memory runs out.
std::uint8_t combiningClassOf(char32_t scalar) {
  UErrorCode status = U_ZERO_ERROR;
  const UNormalizer2* const decomposition = unorm2_getNFDInstance(&status);
  if (U_FAILURE(status)) throw std::bad_alloc();  // the data is compiled in: nothing else can fail
  return unorm2_getCombiningClass(decomposition, static_cast<UChar32>(scalar));
}

bool isControl(BreakClass breakClass) {
  return breakClass == U_GCB_CONTROL || breakClass == U_GCB_CR || breakClass == U_GCB_LF;
}

/// The scalars of one character, from its start. GB3 to GB13 are the names of the rules in the annex.
class Character {
 public:
  explicit Character(char32_t first) { append(first, breakClassOf(first)); }

  /// Appends `next`, or returns false if there is a boundary before it.
  bool extend(char32_t next) {
    const BreakClass nextClass = breakClassOf(next);
    if (!joins(next, nextClass)) return false;
    append(next, nextClass);
    return true;
  }

 private:
  bool joins(char32_t next, BreakClass nextClass) const {
    if (isControl(lastClass_) || isControl(nextClass)) {
      return lastClass_ == U_GCB_CR && nextClass == U_GCB_LF;  // GB3 to GB5
    }
    if (lastClass_ == U_GCB_PREPEND) return true;  // GB9b
    switch (nextClass) {
      case U_GCB_EXTEND:
      case U_GCB_ZWJ:
      case U_GCB_SPACING_MARK:
        return true;  // GB9, GB9a
      case U_GCB_L:
      case U_GCB_LV:
      case U_GCB_LVT:
        return lastClass_ == U_GCB_L;  // GB6
      case U_GCB_V:
        return lastClass_ == U_GCB_L || lastClass_ == U_GCB_LV || lastClass_ == U_GCB_V;  // GB6, GB7
      case U_GCB_T:
        return lastClass_ == U_GCB_LV || lastClass_ == U_GCB_V || lastClass_ == U_GCB_LVT ||
               lastClass_ == U_GCB_T;  // GB7, GB8
      case U_GCB_REGIONAL_INDICATOR:
        return endsInHalfFlag_;  // GB12, GB13
      default:
        return (endsInJoinedPicture_ && isExtendedPictographic(next)) ||  // GB11
               (endsInOpenConjunct_ && isLinkingConsonant(next));
    }
  }

  void append(char32_t scalar, BreakClass breakClass) {
    endsInHalfFlag_ = breakClass == U_GCB_REGIONAL_INDICATOR && !endsInHalfFlag_;
    endsInJoinedPicture_ = breakClass == U_GCB_ZWJ && isExtendedPictographic(base_);
    if (breakClass != U_GCB_EXTEND) base_ = scalar;
    if (isMark(scalar, breakClass)) {
      if (isLinkingVirama(scalar) && isLinkingConsonant(letter_)) endsInOpenConjunct_ = true;
    } else {
      letter_ = scalar;
      endsInOpenConjunct_ = false;
    }
    lastClass_ = breakClass;
  }

  /// Whether a conjunct can continue after the scalar.
  static bool isMark(char32_t scalar, BreakClass breakClass) {
    return breakClass == U_GCB_ZWJ || (breakClass == U_GCB_EXTEND && combiningClassOf(scalar) != 0);
  }

  BreakClass lastClass_ = U_GCB_OTHER;
  char32_t base_ = 0;                 ///< the last scalar that is not Extend
  char32_t letter_ = 0;               ///< the last scalar that is not a mark
  bool endsInHalfFlag_ = false;       ///< in an odd number of regional indicators
  bool endsInJoinedPicture_ = false;  ///< in an emoji, any number of Extend, and one ZWJ
  bool endsInOpenConjunct_ = false;   ///< in a consonant and marks, one of them a virama
};

bool isASCIIByte(char byte) {
  return static_cast<unsigned char>(byte) < 0x80;
}

}  // namespace

bool isExtendedPictographic(char32_t scalar) {
  return contain(extendedPictographic, scalar);
}

std::size_t characterEnd(std::string_view text, std::size_t start) {
  std::size_t end = start;
  Character character(nextScalar(text, end));
  if (isASCIIByte(text[start]) && text[start] != '\r' && end < text.size() && isASCIIByte(text[end]))
    return end;
  for (std::size_t next = end; end < text.size(); end = next) {
    if (!character.extend(nextScalar(text, next))) break;
  }
  return end;
}

}  // namespace zelvo::Unicode
