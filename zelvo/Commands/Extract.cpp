#include <string>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Extraction/AlignedRows.hpp"
#include "zelvo/Extraction/RowForms.hpp"
#include "zelvo/Extraction/SheetRead.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

using Form = ExtractArguments::Form;

Failure printRecord(const AskWorker& ask, WorkbookInput& workbook, const ExtractArguments& arguments) {
  DocumentWorkerRequest& request = workbook.request;
  if (Failure failure = completeTableSelection(ask, request)) return failure;
  request.operation = DocumentWorkerRequest::Operation::extract;
  const auto response = ask(request);
  if (!response) return response.error();
  if (Failure failure = keepCleaned(workbook, arguments.cleaning)) return failure;
  Console::printJson(withCleaning(workbook.cleaning, toJson(*response->table)) + "\n");
  return std::nullopt;
}

void print(const SheetRows& rows, const std::string& notes, const ExtractArguments& arguments) {
  // Before the rows: a reader of standard output may close it early, which ends the tool.
  for (const std::string& sentence : leftOut(rows))
    Console::printError(sentence);
  if (arguments.form == Form::text)
    return Console::print(printable(arguments.workbook) + "\n" +
                          describe(rows, arguments.cells, Console::terminalWidth(), notes));
  const auto writer = rowWriter(arguments.form, rows, arguments.cells, Console::isTerminal());
  for (const SheetRows::Row& row : rows.rows) {
    const std::string lines = writer->lines(row.cells);
    arguments.form == Form::jsonl ? Console::printJson(lines) : Console::print(lines);
  }
}

Failure printRows(const AskWorker& ask, WorkbookInput& workbook, const ExtractArguments& arguments) {
  const auto rows = readRows(ask, workbook.request);
  if (!rows) return rows.error();
  if (Failure failure = keepCleaned(workbook, arguments.cleaning)) return failure;
  print(*rows, workbook.cleaning ? cleaningNotes(*workbook.cleaning) : "", arguments);
  return std::nullopt;
}

Failure readAndPrint(const Hosts& hosts, const ExtractArguments& arguments) {
  if (Failure failure = checkKeptFile(arguments.workbook, arguments.cleaning)) return failure;
  auto workbook = readWorkbook(hosts, arguments.workbook, arguments.cleaning);
  if (!workbook) return workbook.error();
  workbook->request.selection = arguments.selection;
  const AskWorker askWorker = [&](const DocumentWorkerRequest& sent) { return ask(hosts.worker, sent); };
  Failure failure = arguments.form == Form::json ? printRecord(askWorker, *workbook, arguments)
                                                 : printRows(askWorker, *workbook, arguments);
  if (!failure) return std::nullopt;
  return withTableHints(*std::move(failure), hosts, *std::move(workbook));
}

}  // namespace

ExitStatus extract(const Hosts& hosts, const ExtractArguments& arguments) {
  const Failure failure = readAndPrint(hosts, arguments);
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
