#include "zelvo/ResearchWorkbookCommand.hpp"

#include <string>
#include <variant>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/ResearchWorkbook.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/DocumentOutput.hpp"
#include "zelvo/ResearchInput.hpp"

namespace zelvo {
namespace {

const std::string format = "Excel workbook";

ByteBuffer workbookOf(ResearchInput& input, const std::string& title) {
  const auto sourceScope = input.takeSourceScope();
  const auto dataset = ResearchSpreadsheet::decode(input.text, false, input.allowedSources, sourceScope);
  return ResearchWorkbook::make(title, dataset, input.allowedSources, sourceScope);
}

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// A file may hold anything. A byte order mark is none of the report's text; before a table it would hide its
/// first line.
ByteBuffer workbookOf(std::string_view report, const ResearchReportArguments& arguments) {
  if (report.starts_with(byteOrderMark)) report.remove_prefix(byteOrderMark.size());
  if (!Unicode::isValid(report)) throw DocumentError::unsupported("report is not UTF-8");
  return ResearchWorkbook::make(arguments.title, report, arguments.sources);
}

}  // namespace

ExitStatus researchWorkbook(const ResearchWorkbookArguments& arguments) {
  if (const auto complaint = DocumentOutput::check(arguments.output)) return complain(*complaint);
  auto input = readResearchInput(arguments.dataset, arguments.sources);
  if (const auto* complaint = std::get_if<Complaint>(&input)) return complain(*complaint);
  return DocumentOutput::deliverAuthored(arguments.output, format, [&] {
    return workbookOf(*std::get_if<ResearchInput>(&input), arguments.title);
  });
}

ExitStatus researchReport(const ResearchReportArguments& arguments) {
  if (const auto complaint = DocumentOutput::check(arguments.output)) return complain(*complaint);
  const auto report = readText(arguments.report);
  if (const auto* complaint = std::get_if<Complaint>(&report)) return complain(*complaint);
  return DocumentOutput::deliverAuthored(
      arguments.output, format, [&] { return workbookOf(*std::get_if<std::string>(&report), arguments); });
}

}  // namespace zelvo
