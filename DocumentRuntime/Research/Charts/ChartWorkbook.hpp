#pragma once

#include <cstdint>
#include <map>
#include <stop_token>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The workbook for editing a slide's chart: one sheet, "Data", with the chart's columns only.
namespace zelvo::ResearchChartWorkbook {

/// The sheet's columns by the dataset's, both zero-based: the category first, then the values in their order.
std::map<std::int64_t, std::int64_t> columnMap(const ResearchSpreadsheet::Chart& chart);

/// The headings are the chart's series names. The rows below them are the resolved cells; `cells` has one per
/// column of the dataset. Blank cells are left out. Throws what the ZIP writer throws.
ByteBuffer write(const ResearchSpreadsheet& content,
                 const std::vector<std::vector<ResearchSpreadsheet::Cell>>& cells,
                 const ResearchSpreadsheet::Chart& chart, const std::stop_token& stop = {});

}  // namespace zelvo::ResearchChartWorkbook
