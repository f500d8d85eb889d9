#include <string>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/TableText.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// True if the sheet or the range was refused, and not the workbook.
bool isAboutSelection(const CommandError& error) {
  static const std::string aboutUse = DocumentError::invalidSelection("").errorDescription();
  static const std::string aboutSize =
      DocumentError::resourceLimit(TableExtraction::selectionTooLarge).errorDescription();
  return error.status == ExitStatus::refused &&
         (error.message.starts_with(aboutUse) || error.message == aboutSize);
}

/// "Visible sheets: Sales (A1:D20), Notes (empty)"
std::string selectable(const WorkbookInspection& inspection) {
  std::string sheets;
  for (const WorksheetInspection& sheet : inspection.sheets) {
    if (sheet.hidden) continue;
    sheets += sheets.empty() ? "" : ", ";
    sheets += sheet.name + " (" + sheet.populatedRange.value_or("empty") + ")";
  }
  return "Visible sheets: " + (sheets.empty() ? "none" : sheets);
}

/// Prints nothing if the workbook cannot be inspected.
void hintAtSelectable(const DocumentWorkerHost& host, DocumentWorkerRequest& request) {
  request.operation = Operation::inspect;
  const auto response = ask(host, request);
  if (response) Console::printHint(selectable(*response->inspection));
}

void print(const SourceTable& table, const ExtractArguments& arguments) {
  switch (arguments.form) {
    case ExtractArguments::Form::json:
      return Console::printJson(toJson(table) + "\n");
    case ExtractArguments::Form::csv:
      return Console::print(csv(table, Console::isTerminal()));
    case ExtractArguments::Form::text:
      return Console::print(printable(arguments.workbook) + "\n" + describe(table));
  }
}

}  // namespace

ExitStatus extract(const DocumentWorkerHost& host, const ExtractArguments& arguments) {
  auto request = requestAbout(arguments.workbook);
  if (!request) return Console::report(request.error());
  request->operation = Operation::extract;
  request->selection = arguments.selection;

  const auto response = ask(host, *request);
  if (!response) {
    const ExitStatus status = Console::report(response.error());
    if (isAboutSelection(response.error())) hintAtSelectable(host, *request);
    return status;
  }
  print(*response->table, arguments);
  return ExitStatus::success;
}

}  // namespace zelvo
