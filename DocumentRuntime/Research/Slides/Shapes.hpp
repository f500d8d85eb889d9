#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Slides/Script.hpp"

/// The shapes of the slides of a research deck. All texts are escaped here.
namespace zelvo::SlideShapes {

/// Font sizes in documents are in hundredths of a point.
inline constexpr int hundredthsPerPoint = 100;

/// A rectangle on the slide, in EMU.
struct Area {
  std::int64_t x;
  std::int64_t y;
  std::int64_t width;
  std::int64_t height;
};

/// The non-visual properties of a shape. Names are string literals; descriptions are for screen readers.
struct Identity {
  int id;  ///< unique on the slide, above 1
  std::string name;
  std::string description = {};
  bool isTitle = false;  ///< the slide's title in outlines and for screen readers
};

/// The style and position of a text in its area, which has no inner margins.
struct TextStyle {
  int size;                 ///< of the font, in points
  std::string_view colour;  ///< of the theme
  bool bold = false;
  std::string_view anchor = "t";  ///< "t", "ctr" or "b"
  bool alignsRight = false;       ///< paragraphs from right to left do always
};

/// A fill in a colour of the theme.
void appendFill(std::string& xml, std::string_view colour);

/// A text box of these paragraphs, each one run with its language and direction.
void appendText(std::string& xml, const Identity& identity, const Area& area,
                const std::vector<std::string>& paragraphs, const TextStyle& style,
                const SlideScript::Languages& languages);

/// A text box with the slide's number, as a field that office programs update.
void appendSlideNumber(std::string& xml, const Identity& identity, const Area& area, std::size_t number,
                       const TextStyle& style);

/// A filled rectangle without text.
void appendRectangle(std::string& xml, const Identity& identity, const Area& area, std::string_view colour);

/// The frame of the chart that the slide relates to as "rId2".
void appendChart(std::string& xml, const Identity& identity, const Area& area);

}  // namespace zelvo::SlideShapes
