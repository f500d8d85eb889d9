#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/TableText.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

struct ExtractedTable {
  SourceTable table;
  std::optional<CleaningRecord> cleaning;
};

Result<ExtractedTable> extractedTable(const Hosts& hosts, const ExtractArguments& arguments) {
  if (Failure failure = checkKeptFile(arguments.workbook, arguments.cleaning)) return *std::move(failure);
  auto workbook = readWorkbook(hosts, arguments.workbook, arguments.cleaning);
  if (!workbook) return workbook.error();
  workbook->request.operation = DocumentWorkerRequest::Operation::extract;
  workbook->request.selection = arguments.selection;
  auto response = ask(hosts, *workbook);
  if (!response) return response.error();
  if (Failure failure = keepCleaned(*workbook, arguments.cleaning)) return *std::move(failure);
  return ExtractedTable{*std::move(response->table), std::move(workbook->cleaning)};
}

void print(const SourceTable& table, const std::optional<CleaningRecord>& cleaning,
           const ExtractArguments& arguments) {
  switch (arguments.form) {
    case ExtractArguments::Form::json:
      return Console::printJson(withCleaning(cleaning, toJson(table)) + "\n");
    case ExtractArguments::Form::csv:
      return Console::print(csv(table, Console::isTerminal()));
    case ExtractArguments::Form::text:
      return Console::print(printable(arguments.workbook) + "\n" +
                            describe(table, cleaning ? cleaningNotes(*cleaning) : ""));
  }
}

}  // namespace

ExitStatus extract(const Hosts& hosts, const ExtractArguments& arguments) {
  const auto extracted = extractedTable(hosts, arguments);
  if (!extracted) return Console::report(extracted.error());
  print(extracted->table, extracted->cleaning, arguments);
  return ExitStatus::success;
}

}  // namespace zelvo
