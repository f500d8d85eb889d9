#pragma once

#include "zelvo/ExitStatus.hpp"
#include "zelvo/ResearchCommandLine.hpp"

namespace zelvo {

/// `zelvo research workbook`: writes a dataset as a workbook.
ExitStatus researchWorkbook(const ResearchWorkbookArguments& arguments);

/// `zelvo research report`: writes a workbook of a report that came without a dataset.
ExitStatus researchReport(const ResearchReportArguments& arguments);

}  // namespace zelvo
