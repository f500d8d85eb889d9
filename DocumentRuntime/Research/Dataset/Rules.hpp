#pragma once

#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The rules of charts: comparable series, identified categories, observed values.
namespace zelvo::ResearchChartRules {

/// Throws `DocumentError` validationFailed for the first rule that the chart breaks over the resolved cells,
/// whose rows have one cell a column.
void check(const ResearchSpreadsheet::Chart& chart, const std::vector<ResearchSpreadsheet::Column>& columns,
           const std::vector<std::vector<ResearchSpreadsheet::Cell>>& cells);

}  // namespace zelvo::ResearchChartRules
