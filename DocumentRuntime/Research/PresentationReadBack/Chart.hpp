#pragma once

#include <stop_token>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// Compares a written chart part and its workbook with the data that the chart must show: kind, titles,
/// series, references and caches, and that the axes do not distort values. Throws `DocumentError`
/// validationFailed "Slide chart data did not survive delivery."; what `WorkbookReader` throws; `Cancelled`.
void readBackSlideChart(XMLNode chartSpace, const ByteBuffer& workbook,
                        const ResearchPresentation::ResolvedChartBinding& binding,
                        const std::stop_token& stop = {});

}  // namespace zelvo
