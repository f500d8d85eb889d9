#pragma once

#include <string>

namespace zelvo {

/// The stylesheet of a dataset's workbook. Cell formats: 0 text, 1 heading, 2 number and, on request, 3 date.
std::string researchStylesXML(bool withDates);

}  // namespace zelvo
