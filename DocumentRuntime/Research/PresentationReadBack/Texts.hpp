#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The texts that a written presentation must have, by rules of its own: a check that shared code with the
/// authors would repeat their mistakes. All are without the characters that XML does not allow.
namespace zelvo::ReadBackTexts {

/// A text of the model on a slide: with one space for each line break and tab.
std::string onSlide(std::string_view text);

/// A text of the dataset in a chart or its workbook: without control characters, line breaks included.
std::string inChart(std::string_view text);

/// The time of observation at the end of a source's line: "observed 2 April 2024, 07:30 UTC".
std::string observation(const std::optional<std::chrono::sys_seconds>& time);

/// The name of a column as a series and as a heading: with its unit in parentheses, unless that is empty.
std::string seriesName(const ResearchSpreadsheet::Column& column);

}  // namespace zelvo::ReadBackTexts
