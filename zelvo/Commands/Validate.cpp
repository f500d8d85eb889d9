#include "zelvo/ValidateCommand.hpp"

#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/ChartColumns.hpp"
#include "zelvo/ConfinedWork.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/DocumentFile.hpp"
#include "zelvo/DocumentText.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {
namespace {

/// As much as `extract` can have written.
constexpr std::size_t maximumTableBytes = DocumentWorkerWire::maximumMessageBytes;

std::variant<ByteBuffer, Complaint> readTable(const std::string& path) {
  auto file = readDocument(path, maximumTableBytes + 1);
  if (auto* failure = std::get_if<std::string>(&file))
    return Complaint{ExitStatus::refused, std::move(*failure)};
  ByteBuffer& data = std::get_if<DocumentFile>(&file)->data;
  if (data.size() > maximumTableBytes)
    return Complaint{ExitStatus::refused, "The file is larger than 40 MiB: " + path};
  return std::move(data);
}

/// The chart to expect, if any: a Word document has none.
using ExpectedChart = std::optional<ChartArguments>;

/// The members of the request that say what to expect of the document. The table is decoded where it can do
/// no harm; it gives the chart's columns their titles.
std::variant<std::string, Complaint> expectation(const ByteBuffer& encodedTable, const ExpectedChart& chart) {
  return runConfined([&]() -> std::variant<std::string, Complaint> {
    const auto table = fromJson<SourceTable>(std::string(encodedTable.text()));
    JsonWriter writer(encodedTable.size());
    const FieldEncoder field(writer);
    writer.beginObject();
    field("expectedTable", table);
    if (chart) {
      const auto selection = chosenChart(*chart, table.columns);
      if (const auto* complaint = std::get_if<Complaint>(&selection)) return *complaint;
      field("chart", *std::get_if<ChartSelection>(&selection));
    }
    return writer.take();
  });
}

std::variant<DocumentWorkerResponse, Complaint> validated(const DocumentWorkerHost& host,
                                                          const ValidateArguments& arguments,
                                                          const ExpectedChart& chart) {
  auto document = requestAbout(arguments.document);
  if (auto* complaint = std::get_if<Complaint>(&document)) return std::move(*complaint);
  auto& request = *std::get_if<DocumentWorkerRequest>(&document);
  request.operation = DocumentWorkerRequest::Operation::validate;
  request.format = arguments.format;

  if (!arguments.expectedTable.empty()) {
    const auto table = readTable(arguments.expectedTable);
    if (const auto* complaint = std::get_if<Complaint>(&table)) return *complaint;
    auto members = expectation(*std::get_if<ByteBuffer>(&table), chart);
    if (auto* complaint = std::get_if<Complaint>(&members)) return std::move(*complaint);
    return ask(host, request, std::move(*std::get_if<std::string>(&members)));
  }
  if (chart) {
    auto selection = chosenChart(*chart, {});
    if (auto* complaint = std::get_if<Complaint>(&selection)) return std::move(*complaint);
    request.chart = std::move(*std::get_if<ChartSelection>(&selection));
  }
  return ask(host, request);
}

}  // namespace

ExitStatus validate(const DocumentWorkerHost& host, const ValidateArguments& arguments) {
  const bool canHaveChart = arguments.format == DocumentFormat::pptx;
  const ExpectedChart chart = canHaveChart ? arguments.chart : std::nullopt;
  const auto answer = validated(host, arguments, chart);
  if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(*complaint);
  const DocumentValidation& validation = *std::get_if<DocumentWorkerResponse>(&answer)->validation;
  if (arguments.json) {
    Console::printJson(toJson(validation) + "\n");
  } else {
    const ValidationScope scope = {.format = arguments.format,
                                   .expectsTable = !arguments.expectedTable.empty(),
                                   .expectsChart = chart.has_value()};
    Console::print(printable(arguments.document) + "\n" + describe(validation, scope));
  }
  return ExitStatus::success;
}

}  // namespace zelvo
