// Workbooks of datasets; those of reports stand apart.

#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Workbook/Author.hpp"
#include "DocumentRuntime/Research/Workbook/SheetLimits.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"

namespace zelvo {

ByteBuffer ResearchWorkbook::make(std::string_view title, const ResearchSpreadsheet& content,
                                  const AllowedSources& sources,
                                  const std::optional<ResearchSourceScope>& sourceScope,
                                  const std::stop_token& stop) {
  content.validate(/*requiresChart=*/false, sources, sourceScope);
  const auto written = ResearchWorkbookContent::of(title, content, sources, sourceScope);
  ResearchSheetLimits::check(written);
  ByteBuffer bytes = BoundedZIP::write(researchWorkbookPackage(written), stop);
  readBackResearchWorkbook(bytes.view(), written, stop);
  return bytes;
}

}  // namespace zelvo
