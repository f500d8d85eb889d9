#include <string>
#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/ResearchInput.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

const std::string format = "Excel workbook";

ByteBuffer workbookOf(ResearchInput& input, const std::string& title, WorkbookTheme theme) {
  const auto sourceScope = input.takeSourceScope();
  const auto dataset = ResearchSpreadsheet::decode(input.text, false, input.allowedSources, sourceScope);
  return ResearchWorkbook::make(title, dataset, input.allowedSources, sourceScope, theme);
}

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// The file's bytes are unchecked. A byte order mark is not part of the text; it would hide the first line of
/// a table.
ByteBuffer workbookOf(std::string_view report, const ResearchReportArguments& arguments) {
  if (report.starts_with(byteOrderMark)) report.remove_prefix(byteOrderMark.size());
  if (!Unicode::isValid(report)) throw DocumentError::unsupported("report is not UTF-8");
  return ResearchWorkbook::make(arguments.title, report, arguments.sources);
}

}  // namespace

ExitStatus researchWorkbook(const ResearchWorkbookArguments& arguments) {
  if (const Failure failure =
          DocumentOutput::check(arguments.output, {arguments.dataset, arguments.sources.scopeFile}))
    return Console::report(*failure);
  auto input = readResearchInput(arguments.dataset, arguments.sources);
  if (!input) return Console::report(input.error());
  const WorkbookTheme theme = arguments.theme ? WorkbookTheme::included : WorkbookTheme::none;
  return DocumentOutput::writeAuthored(arguments.output, format,
                                       [&] { return workbookOf(*input, arguments.title, theme); });
}

ExitStatus researchReport(const ResearchReportArguments& arguments) {
  if (const Failure failure = DocumentOutput::check(arguments.output, {arguments.report}))
    return Console::report(*failure);
  const auto report = readText(arguments.report);
  if (!report) return Console::report(report.error());
  return DocumentOutput::writeAuthored(arguments.output, format,
                                       [&] { return workbookOf(*report, arguments); });
}

}  // namespace zelvo
