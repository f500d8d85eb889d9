#pragma once

#include <stop_token>
#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

/// The column chart over two columns of a table. The chart's own rules must have passed: indexes in range,
/// every row with both cells.
namespace zelvo::DocumentAuthor {

/// The chart part, with the texts and numbers cached.
std::string chartXML(const SourceTable& table, const ChartSelection& chart);

/// The workbook for editing the chart: one sheet, "ChartData", with the same texts and numbers. Throws what
/// the ZIP writer throws.
ByteBuffer chartWorkbook(const SourceTable& table, const ChartSelection& chart,
                         const std::stop_token& stop = {});

}  // namespace zelvo::DocumentAuthor
