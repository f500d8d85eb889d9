#pragma once

#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/Slides/ChartPlan.hpp"
#include "DocumentRuntime/Research/Slides/Script.hpp"

namespace zelvo {

/// The chart part of a slide, without the XML declaration, over the workbook of `ResearchChartWorkbook`,
/// which is related to it as "rId1". The chart is drawn in a frame of that size.
std::string slideChartXML(const ResearchPresentation::ResolvedChartBinding& binding, const ChartSize& frame,
                          const SlideScript::Languages& languages);

}  // namespace zelvo
