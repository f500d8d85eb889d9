#pragma once

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/Research/ResearchWorkbookContent.hpp"

namespace zelvo {

/// All parts of a dataset's workbook.
PartMap researchWorkbookPackage(const ResearchWorkbookContent& content);

}  // namespace zelvo
