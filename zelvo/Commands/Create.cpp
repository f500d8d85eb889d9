#include <string>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/ChartColumns.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Extraction/SheetChoice.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Extracts the table and resolves the chart by its column titles.
Result<ChartSelection> chartOf(const DocumentWorkerHost& host, DocumentWorkerRequest& request,
                               const ChartArguments& chart) {
  request.operation = Operation::extract;
  const auto extracted = ask(host, request);
  if (!extracted) return extracted.error();
  return chosenChart(chart, extracted->table->columns);
}

Result<DocumentWorkerResponse> created(const DocumentWorkerHost& host, DocumentWorkerRequest& request,
                                       const CreateArguments& arguments) {
  if (arguments.chart && arguments.format == DocumentFormat::pptx) {
    auto chart = chartOf(host, request, *arguments.chart);
    if (!chart) return chart.error();
    request.chart = *std::move(chart);
  }
  request.operation = Operation::create;
  request.format = arguments.format;
  request.title = arguments.title;
  return ask(host, request);
}

Result<DocumentWorkerResponse> created(const DocumentWorkerHost& host, const CreateArguments& arguments) {
  auto request = requestAbout(arguments.workbook);
  if (!request) return request.error();
  request->selection = arguments.selection;
  const AskWorker askWorker = [&host](const DocumentWorkerRequest& sent) { return ask(host, sent); };
  if (Failure failure = completeTableSelection(askWorker, *request)) return *std::move(failure);
  auto response = created(host, *request, arguments);
  if (!response) return withSelectionHints(response.error(), askWorker, *request);
  return response;
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

Failure createAndWrite(const DocumentWorkerHost& host, const CreateArguments& arguments) {
  if (Failure failure = DocumentOutput::check(arguments.output)) return failure;
  const auto response = created(host, arguments);
  if (!response) return response.error();
  const GeneratedDocument& document = *response->document;
  if (arguments.json) {
    Failure failure = DocumentOutput::writeFile(arguments.output, document.data.view());
    if (!failure) Console::printJson(recordOf(document) + "\n");
    return failure;
  }
  return DocumentOutput::write(arguments.output, document.data.view(), describe(document, *response->table));
}

}  // namespace

ExitStatus create(const DocumentWorkerHost& host, const CreateArguments& arguments) {
  const Failure failure = createAndWrite(host, arguments);
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
