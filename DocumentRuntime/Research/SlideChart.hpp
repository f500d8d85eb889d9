#pragma once

#include <string>

#include "DocumentRuntime/Research/ResearchPresentation.hpp"

namespace zelvo {

/// The chart part of a slide, over the workbook of `ResearchChartWorkbook`. Where a chart has values below
/// zero its category labels stand below all bars, and where its labels have no room side by side they are
/// wrapped, and small where they take many lines; otherwise office programs would draw them across bars and
/// legend. Lines run straight from point to point, and axes have no tick marks.
std::string slideChartXML(const ResearchPresentation::ResolvedChartBinding& binding);

}  // namespace zelvo
