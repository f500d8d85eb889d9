#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// How much room text takes on a slide, by a fixed model of character widths: no fonts are measured. All sums
/// are IEEE doubles, added scalar by scalar in the order of the text, since other orders round to other
/// heights.
namespace zelvo::DocumentAuthor {

/// The content box of a slide, EMU; 864 points.
inline constexpr std::int64_t contentWidth = 10'972'800;
inline constexpr double contentWidthPoints = 864;
inline constexpr std::int64_t emuPerPoint = 12'700;

/// The width that a character is taken to have, in ems.
double characterWidth(char32_t scalar);

/// The lines that `text` takes in a box of that width, in points, at that font size, in points. Every line
/// break starts a line; an empty text takes one.
std::int64_t estimatedLines(std::string_view text, double widthPoints, double fontSize);

/// The height in EMU of a table row of these cells, which share the content box's width.
std::int64_t rowHeight(const std::vector<std::string>& cells);

}  // namespace zelvo::DocumentAuthor
