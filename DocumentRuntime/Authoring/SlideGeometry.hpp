#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

/// The geometry of slides: the boxes, the estimated size of texts, and the division of a table into slides.
/// Text is estimated by a fixed model of character widths: no fonts are measured. All sums are IEEE doubles,
/// added scalar by scalar in the order of the text, since other orders round to other heights.
namespace zelvo::DocumentAuthor {

// EMU. The content box is 864 points wide; tables and charts begin at its top.
inline constexpr std::int64_t slideWidth = 12'192'000;
inline constexpr std::int64_t slideHeight = 6'858'000;
inline constexpr std::int64_t contentLeft = 609'600;
inline constexpr std::int64_t contentTop = 1'371'600;
inline constexpr std::int64_t contentWidth = 10'972'800;
inline constexpr std::int64_t emuPerPoint = 12'700;
inline constexpr double contentWidthPoints = 864;

/// The estimated number of lines of `text` in a box of that width at that font size, both in points. Every
/// line break starts a line; an empty text has one.
std::int64_t estimatedLines(std::string_view text, double widthPoints, double fontSize);

/// The height in EMU of a table row of these cells, which share the width of the content box.
std::int64_t rowHeight(const std::vector<std::string>& cells);

/// One slide's rows of cell texts, the column titles first.
using TablePage = std::vector<std::vector<std::string>>;

/// Divides a table into slides by the estimated heights of its rows. Throws `DocumentError` unsupported
/// "presentation cells need too much vertical space; use Word or fewer columns" or resourceLimit
/// "presentation exceeds 20 table slides".
std::vector<TablePage> tablePages(const SourceTable& table);

}  // namespace zelvo::DocumentAuthor
