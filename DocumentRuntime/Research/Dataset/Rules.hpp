#pragma once

#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo {
namespace ResearchRule {

/// Throws `DocumentError` validationFailed with the message unless the rule holds.
inline void require(bool holds, const char* message) {
  if (!holds) throw DocumentError::validationFailed(message);
}

}  // namespace ResearchRule

/// The rules of charts: comparable series, identified categories, observed values.
namespace ResearchChartRules {

/// Throws `DocumentError` validationFailed for the first rule that the chart breaks over the resolved cells.
/// Each row has one cell per column.
void check(const ResearchSpreadsheet::Chart& chart, const std::vector<ResearchSpreadsheet::Column>& columns,
           const std::vector<std::vector<ResearchSpreadsheet::Cell>>& cells);

}  // namespace ResearchChartRules
}  // namespace zelvo
