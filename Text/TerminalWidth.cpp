#include "Text/TerminalWidth.hpp"

#include <unicode/uchar.h>

#include "Text/GraphemeBreak.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr UChar32 softHyphen = 0x00AD;
constexpr UChar32 zeroWidthJoiner = 0x200D;
constexpr UChar32 emojiVariationSelector = 0xFE0F;

/// Emoji_Modifier: the skin tones.
bool isEmojiModifier(UChar32 scalar) {
  return scalar >= 0x1F3FB && scalar <= 0x1F3FF;
}

bool isInvisible(UChar32 scalar) {
  // Category Cf (format character), but terminals show it.
  if (scalar == softHyphen) return false;
  constexpr auto categories = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
  if ((U_GET_GC_MASK(scalar) & categories) != 0) return true;
  // Hangul vowels and final consonants combine with the preceding syllable. Fillers are invisible.
  const int syllable = u_getIntPropertyValue(scalar, UCHAR_HANGUL_SYLLABLE_TYPE);
  return syllable == U_HST_VOWEL_JAMO || syllable == U_HST_TRAILING_JAMO ||
         u_hasBinaryProperty(scalar, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}

bool isWide(UChar32 scalar) {
  const int width = u_getIntPropertyValue(scalar, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

/// Adds up the columns scalar by scalar. The width of a scalar can depend on the previous one.
class ColumnCounter {
 public:
  void add(UChar32 scalar) {
    columns_ += columnsOf(scalar);
    previous_ = scalar;
  }
  std::size_t columns() const { return columns_; }

 private:
  std::size_t columnsOf(UChar32 scalar) {
    const bool isPicture = Unicode::isExtendedPictographic(static_cast<char32_t>(scalar));
    const bool joins = previous_ == zeroWidthJoiner && baseIsPicture_ && isPicture;
    const bool modifies = isEmojiModifier(scalar) && baseIsPicture_;
    if (joins || modifies) return 0;

    if (scalar == emojiVariationSelector && baseColumns_ == 1 && baseIsPicture_) {
      baseColumns_ = 2;
      return 1;
    }
    if (isInvisible(scalar)) return 0;
    baseIsPicture_ = isPicture;
    baseColumns_ = isWide(scalar) ? 2 : 1;
    return baseColumns_;
  }

  std::size_t columns_ = 0;
  UChar32 previous_ = 0;
  /// The last scalar that starts an element: whether it is an emoji, and its columns with a variation
  /// selector.
  bool baseIsPicture_ = false;
  std::size_t baseColumns_ = 0;
};

}  // namespace

std::size_t terminalColumns(std::string_view text) {
  if (Unicode::isASCII(text)) return text.size();
  ColumnCounter counter;
  for (std::size_t position = 0; position < text.size();) {
    counter.add(static_cast<UChar32>(Unicode::nextScalar(text, position)));
  }
  return counter.columns();
}

}  // namespace zelvo
