#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The common parts of presentations: the slide list, the one master with its blank layout, the theme, and
/// the start and end of a slide. Geometry is in EMU, font sizes in hundredths of a point.
namespace zelvo::DocumentAuthor {

/// The presentation part for that many slides; slide i, one-based, has the relationship "rId" + (i + 1).
std::string presentationXML(std::size_t slideCount);
std::string masterXML();
std::string layoutXML();

/// The colours of a theme, as six hexadecimal digits.
struct ThemeColours {
  std::array<std::string_view, 2> dark;   ///< of text
  std::array<std::string_view, 2> light;  ///< of backgrounds
  std::array<std::string_view, 6> accents;
};

std::string themeXML(const ThemeColours& colours);

/// Opens and closes a slide around its shapes.
void appendSlideStart(std::string& xml);
void appendSlideEnd(std::string& xml);

/// A text box across the content box, named "Text " and its id; the text is escaped here.
void appendTextBox(std::string& xml, int id, std::int64_t y, std::int64_t height, int fontSize,
                   std::string_view text);

}  // namespace zelvo::DocumentAuthor
