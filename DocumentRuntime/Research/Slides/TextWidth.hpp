#pragma once

#include <string_view>

namespace zelvo {

enum class FontWeight { regular, bold };

/// The width of texts in the deck's typeface, without reading a font: exact for the glyphs that Arial has in
/// Latin, Greek and Cyrillic; for other scripts, which office programs draw in fonts of their choice,
/// an estimate that is at least the width in common fonts. Widths are in ems.
namespace TextWidth {

/// A square character, as in Chinese.
inline constexpr double fullWidth = 1.0;

/// Of one scalar. Zero for scalars that are never drawn.
double of(char32_t scalar, FontWeight weight);

/// Of a text on one line, which must be valid UTF-8.
double of(std::string_view text, FontWeight weight);

}  // namespace TextWidth
}  // namespace zelvo
