#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Fits texts on the slides of a research deck without measuring fonts: the estimated width of every
/// character is at least its width in the deck's typeface, bold or not. Widths and sizes are in points.
namespace zelvo::SlideText {

/// The height of a line, relative to the font size.
inline constexpr double lineSpacing = 1.2;
/// The space between paragraphs, relative to the font size.
inline constexpr double paragraphSpacing = 0.4;

/// A text with a space for each line break and tab, as slides show it.
std::string flattened(std::string_view text);

/// The size of the area for paragraphs, and the largest font size.
struct Bounds {
  double width;
  double height;
  int largestSize;
};

/// The width of a text on one line, in ems.
double width(std::string_view text);

/// The number of lines of a paragraph that is wrapped at words. `lineWidth` is in ems.
double lines(std::string_view paragraph, double lineWidth);

/// The largest font size, in whole points, at which the paragraphs, wrapped at words, fit into the bounds.
/// Throws `DocumentError` unsupported "slide text needs too much space" if even the smallest legible size is
/// too large: possible with characters of many combining marks, not with plain text.
int fittedSize(const std::vector<std::string>& paragraphs, const Bounds& bounds);

/// A text on one line: the whole text, or the longest start that fits with "…", followed by the ending.
std::string abbreviated(std::string_view text, std::string_view ending, double lineWidth, double fontSize);

}  // namespace zelvo::SlideText
