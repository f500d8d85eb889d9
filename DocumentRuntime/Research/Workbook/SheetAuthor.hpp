#pragma once

#include <string>

#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

namespace zelvo {

/// The worksheet part of one sheet, without the XML declaration.
std::string researchWorksheetXML(const ResearchSheet& sheet, const ResearchWorkbookContent& content);

}  // namespace zelvo
