#pragma once

#include <cstdint>
#include <map>
#include <stop_token>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/ResearchPresentation.hpp"

/// The workbook through which a slide's chart is edited: one sheet, "Data", with the chart's own columns.
namespace zelvo::ResearchChartWorkbook {

/// Where the chart's columns stand on the sheet: the category first, then the values in their order.
std::map<std::int64_t, std::int64_t> columnMap(const ResearchSpreadsheet::Chart& chart);

/// Headings as the chart names its series, then the cells as they are; a blank cell is left out. Throws what
/// the ZIP writer throws.
ByteBuffer write(const ResearchPresentation::ResolvedChartBinding& binding, const std::stop_token& stop = {});

}  // namespace zelvo::ResearchChartWorkbook
