#pragma once

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

namespace zelvo {

/// All parts of a dataset's workbook.
PartMap researchWorkbookPackage(const ResearchWorkbookContent& content);

}  // namespace zelvo
