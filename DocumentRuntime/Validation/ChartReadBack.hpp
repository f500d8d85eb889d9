#pragma once

#include <stop_token>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Validation/GeneratedPackage.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* chartDiffers = "chart data differs from the approved columns";

}  // namespace RefusalDetail

inline constexpr std::string_view chartPartName = "ppt/charts/chart1.xml";
inline constexpr std::string_view chartWorkbookName = "ppt/embeddings/chart-data.xlsx";

/// Verifies that the chart part, which must exist, and its embedded workbook have the same data, and, with a
/// table, that this is the data of the approved columns. Throws what the gate, the profile, the workbook
/// reader and the rules for charts throw, and `DocumentError` validationFailed, in this order: "chart
/// workbook" (missing), "unexpected data in embedded chart workbook", "chart data" (the part's shape), "chart
/// values", "chart references or cache indexes", "chart data" (the workbook's shape, another series name),
/// "chart cache and embedded data disagree", "chart data differs from the approved columns".
void validateChartPackage(const GeneratedPackage& package, const SourceTable* expectedTable,
                          const ChartSelection& expectedChart, const std::stop_token& stop);

}  // namespace zelvo
