#include "DocumentRuntime/Research/Slides/TextWidth.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "DocumentRuntime/Research/Slides/GlyphWidths.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

struct EstimatedRange {
  char32_t last;
  double ems;
};

using TextWidth::fullWidth;
/// Scripts that are not listed: Ethiopic and Canadian syllables are the widest that common fonts have.
constexpr double unknownScript = 2.1;

/// Ascending; each range begins after the previous one. Combining marks count like letters, so that a text of
/// many marks on one letter, which grow upwards, is not taken for a short one.
constexpr EstimatedRange estimates[] = {
    {0x02FF, 1.6},             // Latin beyond the table; phonetic letters
    {0x036F, fullWidth},       // combining marks
    {0x0590, 1.45},            // Greek and Cyrillic beyond the table, Armenian
    {0x05CF, fullWidth},       // Hebrew points
    {0x05FF, 0.8},             // Hebrew letters
    {0x0627, fullWidth},       // Arabic
    {0x0632, 1.05},            //
    {0x0636, 1.4},             // seen, sheen, sad, dad
    {0x0638, 1.1},             //
    {0x0640, 0.75},            //
    {0x0641, 1.2},             // feh
    {0x0670, fullWidth},       //
    {0x06FF, 1.4},             // other letters of the Arabic script
    {0x08FF, 1.2},             // Syriac, Thaana
    {0x0DFF, 1.4},             // scripts of India
    {0x0E7F, fullWidth},       // Thai
    {0x10FF, 1.4},             // Lao, Tibetan, Myanmar, Georgian
    {0x11FF, fullWidth},       // Hangul letters
    {0x1CFF, unknownScript},   //
    {0x1DFF, 1.2},             // phonetic letters
    {0x1EFF, 1.1},             // Latin with accents
    {0x1FFF, 1.4},             // Greek with accents
    {0x200A, fullWidth},       // spaces
    {0x200F, 0},               // joiners and marks of direction
    {0x2029, fullWidth},       //
    {0x202E, 0},               // marks of direction
    {0x205F, 1.9},             // punctuation
    {0x206F, 0},               // invisible operators
    {0x2BFF, 1.7},             // signs and symbols
    {0x2DFF, 1.3},             //
    {0x2E7F, 3.0},             // two-em and three-em dashes
    {0xA4CF, fullWidth},       // Chinese, Japanese
    {0xABFF, 1.5},             //
    {0xD7FF, fullWidth},       // Korean
    {0xFAFF, 1.2},             // private use, compatibility ideographs
    {0xFB4F, 1.75},            // ligatures
    {0xFDEF, 1.45},            // Arabic forms
    {0xFDFF, 12},              // Arabic words and sentences in one character
    {0xFE0F, 0},               // variation selectors
    {0xFE6F, fullWidth},       //
    {0xFEFE, 1.45},            // Arabic forms
    {0xFEFF, 0},               // byte order mark
    {0xFFFF, 1.15},            // full-width and half-width forms
    {0x11FFF, unknownScript},  //
    {0x13FFF, 5},              // cuneiform, hieroglyphs
    {0x1EFFF, unknownScript},  //
    {0x1F3FA, 1.6},            // emoji
    {0x1F3FF, fullWidth},      // emoji modifiers
    {0x1FFFF, 1.6},            // emoji
    {0xDFFFF, fullWidth},      // rare ideographs
    {0xE0FFF, 0},              // tags, variation selectors
    {0x10FFFF, 1.2},           // private use
};
double estimated(char32_t scalar) {
  return std::ranges::lower_bound(estimates, scalar, {}, &EstimatedRange::last)->ems;
}

}  // namespace

double TextWidth::of(char32_t scalar, FontWeight weight) {
  std::size_t index = 0;
  for (const auto& [first, last] : GlyphWidths::ranges) {
    if (scalar < first) break;
    if (scalar <= last) {
      index += scalar - first;
      const auto& table = weight == FontWeight::bold ? GlyphWidths::bold : GlyphWidths::regular;
      if (table[index] == 0) break;
      return static_cast<double>(table[index]) / GlyphWidths::unitsPerEm;
    }
    index += last - first + 1;
  }
  return estimated(scalar);
}

double TextWidth::of(std::string_view text, FontWeight weight) {
  double sum = 0;
  for (std::size_t at = 0; at < text.size();)
    sum += of(Unicode::nextScalar(text, at), weight);
  return sum;
}

}  // namespace zelvo
