#pragma once

#include <string>

#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

namespace zelvo {

/// The worksheet part of one sheet, without the XML declaration.
std::string researchWorksheetXML(const ResearchSheet& sheet, const ResearchWorkbookContent& content);

/// The stylesheet of a dataset's workbook. Cell formats: 0 text, 1 heading, 2 number and, on request, 3 date.
std::string researchStylesXML(bool withDates);

}  // namespace zelvo
