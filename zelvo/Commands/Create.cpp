#include <string>
#include <utility>

#include "zelvo/Commands/ChartColumns.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Extracts the table and resolves the chart by its column titles.
Result<ChartSelection> chartOf(const Hosts& hosts, WorkbookInput& workbook, const ChartArguments& chart) {
  workbook.request.operation = Operation::extract;
  const auto extracted = ask(hosts, workbook);
  if (!extracted) return extracted.error();
  return chosenChart(chart, extracted->table->columns);
}

Result<DocumentWorkerResponse> created(const Hosts& hosts, WorkbookInput& workbook,
                                       const CreateArguments& arguments) {
  DocumentWorkerRequest& request = workbook.request;
  request.selection = arguments.selection;
  if (arguments.chart && arguments.format == DocumentFormat::pptx) {
    auto chart = chartOf(hosts, workbook, *arguments.chart);
    if (!chart) return chart.error();
    request.chart = *std::move(chart);
  }
  request.operation = Operation::create;
  request.format = arguments.format;
  request.title = arguments.title;
  return ask(hosts, workbook);
}

Failure createAndWrite(const Hosts& hosts, const CreateArguments& arguments) {
  if (Failure failure = DocumentOutput::check(arguments.output, {arguments.workbook})) return failure;
  if (Failure failure = checkKeptFile(arguments.workbook, arguments.cleaning)) return failure;
  auto workbook = readWorkbook(hosts, arguments.workbook, arguments.cleaning);
  if (!workbook) return workbook.error();
  const auto response = created(hosts, *workbook, arguments);
  if (!response) return response.error();
  if (Failure failure = keepCleaned(*workbook, arguments.cleaning)) return failure;
  const GeneratedDocument& document = *response->document;
  const std::string notes = workbook->cleaning ? cleaningNotes(*workbook->cleaning) : "";
  return DocumentOutput::write(arguments.output, document.data.view(),
                               describe(document, *response->table, notes));
}

}  // namespace

ExitStatus create(const Hosts& hosts, const CreateArguments& arguments) {
  const Failure failure = createAndWrite(hosts, arguments);
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
