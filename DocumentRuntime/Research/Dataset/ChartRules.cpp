#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "DocumentRuntime/Research/Dataset/Rules.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::ResearchChartRules {
namespace {

using ResearchRule::require;
using Cell = ResearchSpreadsheet::Cell;
using Chart = ResearchSpreadsheet::Chart;
using Column = ResearchSpreadsheet::Column;
using CellRow = std::vector<Cell>;

constexpr std::size_t maximumTitleLength = 160;  // characters

const Cell& cellOf(const CellRow& row, std::int64_t column) {
  return row[static_cast<std::size_t>(column)];
}

/// Columns are indexed only after their own check.
bool hasValidColumns(const Chart& chart, const std::vector<Column>& columns) {
  const auto isColumn = [&columns](std::int64_t index) {
    return index >= 0 && index < static_cast<std::int64_t>(columns.size());
  };
  const auto columnAt = [&columns](std::int64_t index) -> const Column& {
    return columns[static_cast<std::size_t>(index)];
  };

  if (chart.title.empty() || Unicode::exceeds(chart.title, maximumTitleLength)) return false;
  if (!isColumn(chart.categoryColumn)) return false;
  if (chart.valueColumns.empty() || chart.valueColumns.size() > Chart::maximumSeries) return false;
  std::vector<std::int64_t> sorted = chart.valueColumns;
  std::sort(sorted.begin(), sorted.end());
  if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) return false;
  return std::ranges::all_of(chart.valueColumns, [&](std::int64_t index) {
    return isColumn(index) && index != chart.categoryColumn && columnAt(index).kind == Column::Kind::number &&
           columnAt(index).unitText() == columnAt(chart.valueColumns.front()).unitText();
  });
}

/// Ignores rows without any value, whatever their category is: they are not observations.
bool hasUniqueCategories(const Chart& chart, const std::vector<CellRow>& cells) {
  std::vector<std::string> labels;
  for (const CellRow& row : cells) {
    const bool isObserved = std::ranges::any_of(
        chart.valueColumns, [&row](std::int64_t column) { return cellOf(row, column).number() != nullptr; });
    if (isObserved) labels.emplace_back(Unicode::trimmed(cellOf(row, chart.categoryColumn).displayText()));
  }
  std::sort(labels.begin(), labels.end());
  const bool hasEmpty = !labels.empty() && labels.front().empty();
  return !hasEmpty && std::adjacent_find(labels.begin(), labels.end()) == labels.end();
}

bool hasEnoughObservations(const Chart& chart, const std::vector<CellRow>& cells) {
  const std::ptrdiff_t needed = chart.kind == Chart::Kind::line ? 2 : 1;
  return std::ranges::all_of(chart.valueColumns, [&](std::int64_t column) {
    const auto count = std::ranges::count_if(cells, [&](const CellRow& row) {
      return cellOf(row, column).number() != nullptr &&
             !cellOf(row, chart.categoryColumn).displayText().empty();
    });
    return count >= needed;
  });
}

}  // namespace

void check(const Chart& chart, const std::vector<Column>& columns, const std::vector<CellRow>& cells) {
  require(hasValidColumns(chart, columns),
          "Chart columns must be valid and share a unit; separate incomparable metrics.");
  require(
      hasUniqueCategories(chart, cells),
      "Chart observations need unique identified periods/categories. Conflicting source observations cannot "
      "silently become duplicate points.");
  require(hasEnoughObservations(chart, cells),
          "A chart needs observed numeric values and category labels. Never turn missing values into zero.");
}

}  // namespace zelvo::ResearchChartRules
