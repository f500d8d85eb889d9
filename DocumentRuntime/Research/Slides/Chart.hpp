#pragma once

#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// The chart part of a slide, over the workbook of `ResearchChartWorkbook`. Lines run straight from point to
/// point. Where a chart has values below zero its category labels stand below all bars, and where its labels
/// have no room side by side they are wrapped, and small where they take many lines.
std::string slideChartXML(const ResearchPresentation::ResolvedChartBinding& binding);

}  // namespace zelvo
