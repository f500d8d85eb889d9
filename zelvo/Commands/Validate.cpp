#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/ChartColumns.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Execution/InputFile.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

/// The most that `extract` can have written.
constexpr std::size_t maximumTableMebibytes = DocumentWorkerWire::maximumMessageBytes >> 20U;

/// The chart to expect, if any.
using ExpectedChart = std::optional<ChartArguments>;

/// The request's members for the expected table and chart. The table is decoded in a confined child; its
/// columns resolve the chart.
Result<std::string> expectation(const ByteBuffer& encodedTable, const ExpectedChart& chart) {
  return runConfinedChild([&]() -> Result<std::string> {
    const JsonDocument document{std::string(encodedTable.text())};
    // Of a cleaned workbook, `extract` prints the table as a member.
    const auto record = document.root().object().optional("record");
    SourceTable table;
    decode(record.value_or(document.root()), table);
    JsonWriter writer(encodedTable.size());
    const FieldEncoder field(writer);
    writer.beginObject();
    field("expectedTable", table);
    if (chart) {
      const auto selection = chosenChart(*chart, table.columns);
      if (!selection) return selection.error();
      field("chart", *selection);
    }
    return writer.take();
  });
}

Result<DocumentWorkerResponse> validated(const DocumentWorkerHost& host, const ValidateArguments& arguments) {
  const ExpectedChart& chart = arguments.chart;
  auto request = requestAbout(arguments.document);
  if (!request) return request.error();
  request->operation = DocumentWorkerRequest::Operation::validate;
  request->format = arguments.format;

  std::optional<std::string> members;
  if (!arguments.expectedTable.empty()) {
    const auto table = readWholeFile(arguments.expectedTable, maximumTableMebibytes);
    if (!table) return table.error();
    auto encoded = expectation(*table, chart);
    if (!encoded) return encoded.error();
    members = *std::move(encoded);
  } else if (chart) {
    auto selection = chosenChart(*chart, {});
    if (!selection) return selection.error();
    request->chart = *std::move(selection);
  }
  auto response = members ? ask(host, *request, *std::move(members)) : ask(host, *request);
  if (!response) return withHints(response.error(), Stage::validating, request->data.view());
  return response;
}

}  // namespace

ExitStatus validate(const Hosts& hosts, const ValidateArguments& arguments) {
  const auto response = validated(hosts.worker, arguments);
  if (!response) return Console::report(response.error());
  const DocumentValidation& validation = *response->validation;
  if (arguments.json) {
    Console::printJson(toJson(validation) + "\n");
  } else {
    const ValidationScope scope = {.format = arguments.format,
                                   .expectsTable = !arguments.expectedTable.empty(),
                                   .expectsChart = arguments.chart.has_value()};
    Console::print(printable(arguments.document) + "\n" + describe(validation, scope));
  }
  return ExitStatus::success;
}

}  // namespace zelvo
