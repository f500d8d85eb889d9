#include <string>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Extraction/AlignedRows.hpp"
#include "zelvo/Extraction/RowForms.hpp"
#include "zelvo/Extraction/SheetRead.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

using Form = ExtractArguments::Form;

Failure printRecord(const AskWorker& ask, DocumentWorkerRequest& request) {
  if (Failure failure = completeTableSelection(ask, request)) return failure;
  request.operation = DocumentWorkerRequest::Operation::extract;
  const auto response = ask(request);
  if (!response) return response.error();
  Console::printJson(toJson(*response->table) + "\n");
  return std::nullopt;
}

void print(const SheetRows& rows, const ExtractArguments& arguments) {
  // Before the rows: a reader of standard output may close it early, which ends the tool.
  for (const std::string& sentence : leftOut(rows))
    Console::printError(sentence);
  if (arguments.form == Form::text)
    return Console::print(printable(arguments.workbook) + "\n" +
                          describe(rows, arguments.cells, Console::terminalWidth()));
  const auto writer = rowWriter(arguments.form, rows, arguments.cells, Console::isTerminal());
  for (const SheetRows::Row& row : rows.rows) {
    const std::string lines = writer->lines(row.cells);
    arguments.form == Form::jsonl ? Console::printJson(lines) : Console::print(lines);
  }
}

Failure printRows(const AskWorker& ask, DocumentWorkerRequest& request, const ExtractArguments& arguments) {
  const auto rows = readRows(ask, request);
  if (!rows) return rows.error();
  print(*rows, arguments);
  return std::nullopt;
}

}  // namespace

ExitStatus extract(const DocumentWorkerHost& host, const ExtractArguments& arguments) {
  auto request = requestAbout(arguments.workbook);
  if (!request) return Console::report(request.error());
  request->selection = arguments.selection;
  const AskWorker askWorker = [&host](const DocumentWorkerRequest& sent) { return ask(host, sent); };
  Failure failure = arguments.form == Form::json ? printRecord(askWorker, *request)
                                                 : printRows(askWorker, *request, arguments);
  if (!failure) return ExitStatus::success;
  return Console::report(withSelectionHints(*std::move(failure), askWorker, *request));
}

}  // namespace zelvo
