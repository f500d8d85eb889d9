#include <string>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/ChartColumns.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Extraction/SheetChoice.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Extracts the table and resolves the chart by its column titles.
Result<ChartSelection> chartOf(const AskWorker& ask, DocumentWorkerRequest& request,
                               const ChartArguments& chart) {
  request.operation = Operation::extract;
  const auto extracted = ask(request);
  if (!extracted) return extracted.error();
  return chosenChart(chart, extracted->table->columns);
}

Result<DocumentWorkerResponse> created(const AskWorker& ask, DocumentWorkerRequest& request,
                                       const CreateArguments& arguments) {
  if (Failure failure = completeTableSelection(ask, request)) return *std::move(failure);
  if (arguments.chart) {
    auto chart = chartOf(ask, request, *arguments.chart);
    if (!chart) return chart.error();
    request.chart = *std::move(chart);
  }
  request.operation = Operation::create;
  request.format = arguments.format;
  request.title = arguments.title;
  return ask(request);
}

/// The document's record without `data`: those bytes are in the output file, many times larger than the rest.
std::string recordOf(const GeneratedDocument& document) {
  JsonWriter writer;
  const FieldEncoder field(writer);
  writer.beginObject();
  eachField(document, [&field](std::string_view key, const auto& value) {
    if (key != "data") field(key, value);
  });
  writer.endObject();
  return writer.take();
}

Failure createAndWrite(const Hosts& hosts, const CreateArguments& arguments) {
  if (Failure failure = DocumentOutput::check(arguments.output, {arguments.workbook})) return failure;
  if (Failure failure = checkKeptFile(arguments.workbook, arguments.cleaning)) return failure;
  auto workbook = readWorkbook(hosts, arguments.workbook, arguments.cleaning);
  if (!workbook) return workbook.error();
  workbook->request.selection = arguments.selection;
  const AskWorker askWorker = [&](const DocumentWorkerRequest& sent) { return ask(hosts.worker, sent); };
  const auto response = created(askWorker, workbook->request, arguments);
  if (!response) return withTableHints(response.error(), hosts, *std::move(workbook));
  if (Failure failure = keepCleaned(*workbook, arguments.cleaning)) return failure;
  const GeneratedDocument& document = *response->document;
  if (arguments.json) {
    Failure failure = DocumentOutput::writeFile(arguments.output, document.data.view());
    if (!failure) Console::printJson(withCleaning(workbook->cleaning, recordOf(document)) + "\n");
    return failure;
  }
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
