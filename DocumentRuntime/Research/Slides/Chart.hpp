#pragma once

#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// The chart part of a slide, over the workbook of `ResearchChartWorkbook`. Lines run straight from point to
/// point. In a chart with values below zero the category labels are below all bars. Labels that do not fit
/// side by side are wrapped, and smaller if they need many lines.
std::string slideChartXML(const ResearchPresentation::ResolvedChartBinding& binding);

}  // namespace zelvo
