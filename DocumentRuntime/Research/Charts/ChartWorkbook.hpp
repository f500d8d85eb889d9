#pragma once

#include <stop_token>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The workbook for editing a slide's chart: one sheet, "Data", with the chart's columns only.
namespace zelvo::ResearchChartWorkbook {

/// The columns are the category, then the values in their order. The headings are the chart's series names.
/// The rows below them are the resolved cells; `cells` has one per column of the dataset. Blank cells are
/// left out. Throws what the ZIP writer throws.
ByteBuffer write(const ResearchSpreadsheet& content,
                 const std::vector<std::vector<ResearchSpreadsheet::Cell>>& cells,
                 const ResearchSpreadsheet::Chart& chart, const std::stop_token& stop = {});

}  // namespace zelvo::ResearchChartWorkbook
