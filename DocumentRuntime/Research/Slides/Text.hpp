#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Slides/TextWidth.hpp"

/// Fits texts on the slides of a research deck. Widths and sizes are in points unless they are in ems.
namespace zelvo::SlideText {

/// The height of a line, relative to the font size.
inline constexpr double lineSpacing = 1.2;
/// The space between paragraphs, relative to the font size.
inline constexpr double paragraphSpacing = 0.4;
/// The smallest font size.
inline constexpr int smallestSize = 6;

/// A text with a space for each line break and tab, as slides show it.
std::string flattened(std::string_view text);

/// The size of the area for paragraphs, their largest font size and the weight of their font.
struct Bounds {
  double width;
  double height;
  int largestSize;
  FontWeight weight = FontWeight::regular;
};

/// The number of lines of a paragraph that is wrapped at words. `lineWidth` is in ems.
double lines(std::string_view paragraph, double lineWidth, FontWeight weight);

/// The width of the widest word, in ems.
double widestWord(std::string_view text, FontWeight weight);

/// The largest font size, in whole points, at which the paragraphs, wrapped at words, fit into the bounds.
/// Returns nullopt if even the smallest size is too large: possible with characters of many combining marks,
/// not with plain text.
std::optional<int> largestFitting(const std::vector<std::string>& paragraphs, const Bounds& bounds);

/// The same. Throws `DocumentError` unsupported "slide text needs too much space" instead.
int fittedSize(const std::vector<std::string>& paragraphs, const Bounds& bounds);

/// A text on one line: the whole text, or the longest start that fits with "…", followed by the ending.
std::string abbreviated(std::string_view text, std::string_view ending, double lineWidth, double fontSize);

}  // namespace zelvo::SlideText
