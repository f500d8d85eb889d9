#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How texts are made to fit on the slides of a research deck, without measuring fonts: every character is
/// taken for at least as wide as it is drawn in the deck's typeface, bold or not. Widths and sizes are in
/// points.
namespace zelvo::SlideText {

/// The height of a line, of a font's size.
inline constexpr double lineSpacing = 1.2;
/// The space between paragraphs, of a font's size.
inline constexpr double paragraphSpacing = 0.4;

/// A text as a slide shows it, wrapped by the slide: with a space for each line break and tab.
std::string flattened(std::string_view text);

/// The size of the area for paragraphs, and the largest font size.
struct Bounds {
  double width;
  double height;
  int largestSize;
};

/// The width of a text on one line, in ems.
double width(std::string_view text);

/// The lines that a paragraph takes, wrapped at words, where a line is so many ems wide.
double lines(std::string_view paragraph, double lineWidth);

/// The largest font size, in whole points, at which the paragraphs, wrapped at words, fit into the bounds.
/// Throws `DocumentError` unsupported "slide text needs too much space" where even the smallest legible size
/// is too large: for characters that are drawn from many others, never for plain ones.
int fittedSize(const std::vector<std::string>& paragraphs, const Bounds& bounds);

/// A text on one line: the whole text, or as much of its beginning as fits with "…", and then the ending.
std::string abbreviated(std::string_view text, std::string_view ending, double lineWidth, double fontSize);

}  // namespace zelvo::SlideText
