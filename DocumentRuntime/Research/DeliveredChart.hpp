#pragma once

#include <stop_token>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/ResearchPresentation.hpp"

namespace zelvo {

/// Compares what a delivered chart part has cached, and the workbook behind it, with the data that the chart
/// is to show. Throws `DocumentError` validationFailed "Slide chart data did not survive delivery."; what
/// `WorkbookReader` throws; `Cancelled`.
void verifyDeliveredChart(XMLNode chartSpace, const ByteBuffer& workbook,
                          const ResearchPresentation::ResolvedChartBinding& binding,
                          const std::stop_token& stop = {});

}  // namespace zelvo
