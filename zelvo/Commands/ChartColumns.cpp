#include "zelvo/Commands/ChartColumns.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace zelvo {
namespace {

std::optional<std::int64_t> indexIn(std::string_view text) {
  std::int64_t index = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, index);
  if (error != std::errc() || stop != end || index < 0) return std::nullopt;
  return index;
}

/// Returns nullopt also if several columns have the title.
std::optional<std::int64_t> columnOf(std::string_view text, const std::vector<std::string>& titles) {
  const auto count = std::ranges::count(titles, text);
  if (count == 0) return indexIn(text);
  if (count > 1) return std::nullopt;
  return std::ranges::find(titles, text) - titles.begin();
}

std::string listOf(const std::vector<std::string>& titles) {
  std::string list;
  for (std::size_t i = 0; i < titles.size(); ++i)
    list += (i == 0 ? "" : ", ") + std::to_string(i) + " " + titles[i];
  return list;
}

CommandError errorAbout(const std::string& columns, const std::vector<std::string>& titles) {
  if (titles.empty())
    return {ExitStatus::usage, "Without --expect, --chart takes indexes of columns only: " + columns};
  return {ExitStatus::refused,
          "The chart does not name two columns: " + columns + " (the columns are " + listOf(titles) + ")"};
}

}  // namespace

Result<ChartSelection> chosenChart(const ChartArguments& arguments, const std::vector<std::string>& titles) {
  const std::string_view columns = arguments.columns;
  for (std::size_t colon = columns.find(':'); colon != std::string_view::npos;
       colon = columns.find(':', colon + 1)) {
    const auto category = columnOf(columns.substr(0, colon), titles);
    const auto value = columnOf(columns.substr(colon + 1), titles);
    if (category && value)
      return ChartSelection{.categoryColumn = *category, .valueColumn = *value, .title = arguments.title};
  }
  return errorAbout(arguments.columns, titles);
}

}  // namespace zelvo
