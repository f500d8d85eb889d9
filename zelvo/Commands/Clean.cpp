#include <string>
#include <utility>

#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

Result<DocumentCleanerResponse> cleaned(const DocumentCleanerHost& host, const CleanArguments& arguments) {
  auto file = requestAbout(arguments.workbook);
  if (!file) return file.error();
  DocumentCleanerRequest request = {.sourceName = std::move(file->sourceName),
                                    .data = std::move(file->data),
                                    .unmerge = arguments.unmerge,
                                    .plainFormats = arguments.plainFormats};
  if (!arguments.sheets.empty()) request.sheets = arguments.sheets;
  auto response = ask(host, request);
  if (!response) return withHints(response.error(), Stage::cleaning, request.data.view());
  return response;
}

Failure cleanAndWrite(const DocumentCleanerHost& host, const CleanArguments& arguments) {
  if (Failure failure = DocumentOutput::check(arguments.output, {arguments.workbook})) return failure;
  auto response = cleaned(host, arguments);
  if (!response) return response.error();
  const ByteBuffer document = std::move(response->document->data);
  const CleaningRecord record = cleaningRecord(*std::move(response));
  if (!arguments.json)
    return DocumentOutput::write(arguments.output, document.view(), describe(record, document.view()));
  if (Failure failure = DocumentOutput::writeFile(arguments.output, document.view())) return failure;
  Console::printJson(toJson(record) + "\n");
  return std::nullopt;
}

}  // namespace

ExitStatus clean(const Hosts& hosts, const CleanArguments& arguments) {
  const Failure failure = cleanAndWrite(hosts.cleaner, arguments);
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
