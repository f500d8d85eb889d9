#pragma once

#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo {

/// One sheet of a dataset's workbook, before it becomes XML. Dates are texts here.
struct ResearchSheet {
  enum class Kind { overview, data, report, sources };
  using Row = std::vector<ResearchSpreadsheet::Cell>;

  Kind kind;
  std::string_view name;  ///< a string literal
  std::vector<Row> rows;  ///< the heading first
};

/// Calculations by their cell on the Data sheet.
using CalculationMap = std::map<CellAddress, ResolvedCalculation>;

/// The content of a dataset's workbook: the input of the author, and the expectation of the read-back.
struct ResearchWorkbookContent {
  const ResearchSpreadsheet* dataset;     ///< must outlive this
  std::vector<ResearchSheet::Row> cells;  ///< the dataset's, resolved
  CalculationMap calculations;
  std::vector<ResearchSheet> sheets;  ///< an overview if there are charts, data, report, sources
  bool hasScope = false;              ///< sources are records, not URLs, and dates have a style

  /// Computes and lays out a valid dataset. Throws what the evaluator throws.
  static ResearchWorkbookContent of(std::string_view title, const ResearchSpreadsheet& dataset,
                                    const AllowedSources& sources,
                                    const std::optional<ResearchSourceScope>& sourceScope);
};

}  // namespace zelvo
