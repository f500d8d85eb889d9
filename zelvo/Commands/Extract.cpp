#include "zelvo/ExtractCommand.hpp"

#include <string>
#include <variant>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/TableText.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// Whether the refusal is of the sheet or the range, and not of the workbook.
bool isAboutSelection(const Complaint& complaint) {
  static const std::string aboutUse = DocumentError::invalidSelection("").errorDescription();
  static const std::string aboutSize =
      DocumentError::resourceLimit(TableExtraction::selectionTooLarge).errorDescription();
  return complaint.status == ExitStatus::refused &&
         (complaint.message.starts_with(aboutUse) || complaint.message == aboutSize);
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

/// A workbook that cannot be inspected has been complained about already.
void hintAtSelectable(const DocumentWorkerHost& host, DocumentWorkerRequest& request) {
  request.operation = Operation::inspect;
  const auto answer = ask(host, request);
  if (const auto* response = std::get_if<DocumentWorkerResponse>(&answer))
    Console::hint(selectable(*response->inspection));
}

void print(const SourceTable& table, const ExtractArguments& arguments) {
  switch (arguments.form) {
    case ExtractArguments::Form::json:
      return Console::printJson(toJson(table) + "\n");
    case ExtractArguments::Form::csv:
      return Console::print(csv(table, Console::isTerminal()));
    case ExtractArguments::Form::people:
      return Console::print(printable(arguments.workbook) + "\n" + describe(table));
  }
}

}  // namespace

ExitStatus extract(const DocumentWorkerHost& host, const ExtractArguments& arguments) {
  auto document = requestAbout(arguments.workbook);
  if (const auto* complaint = std::get_if<Complaint>(&document)) return complain(*complaint);
  auto& request = *std::get_if<DocumentWorkerRequest>(&document);
  request.operation = Operation::extract;
  request.selection = arguments.selection;

  const auto answer = ask(host, request);
  if (const auto* complaint = std::get_if<Complaint>(&answer)) {
    Console::complain(complaint->message);
    if (isAboutSelection(*complaint)) hintAtSelectable(host, request);
    return complaint->status;
  }
  print(*std::get_if<DocumentWorkerResponse>(&answer)->table, arguments);
  return ExitStatus::success;
}

}  // namespace zelvo
