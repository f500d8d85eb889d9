#include "zelvo/ValidateCommand.hpp"

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/ChartColumns.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/DocumentFile.hpp"
#include "zelvo/DocumentText.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

/// As much as `extract` can have written.
constexpr std::size_t maximumTableBytes = DocumentWorkerWire::maximumMessageBytes;

std::variant<SourceTable, Complaint> readTable(const std::string& path) {
  auto file = readDocument(path, maximumTableBytes + 1);
  if (auto* failure = std::get_if<std::string>(&file))
    return Complaint{ExitStatus::refused, std::move(*failure)};
  const ByteBuffer& data = std::get_if<DocumentFile>(&file)->data;
  if (data.size() > maximumTableBytes)
    return Complaint{ExitStatus::refused, "The file is larger than 40 MiB: " + path};
  try {
    return fromJson<SourceTable>(std::string(data.text()));
  } catch (const DecodingError& error) {
    return Complaint{ExitStatus::refused, error.what()};
  }
}

/// Everything that the worker is asked, but for the operation.
std::variant<DocumentWorkerRequest, Complaint> requestFor(const ValidateArguments& arguments) {
  auto document = requestAbout(arguments.document);
  auto* request = std::get_if<DocumentWorkerRequest>(&document);
  if (request == nullptr) return document;
  request->format = arguments.format;

  if (!arguments.expectedTable.empty()) {
    auto table = readTable(arguments.expectedTable);
    if (auto* complaint = std::get_if<Complaint>(&table)) return std::move(*complaint);
    request->expectedTable = std::move(*std::get_if<SourceTable>(&table));
  }
  if (arguments.chart && arguments.format == DocumentFormat::pptx) {
    const auto titles = request->expectedTable ? request->expectedTable->columns : std::vector<std::string>();
    auto chart = chosenChart(*arguments.chart, titles);
    if (auto* complaint = std::get_if<Complaint>(&chart)) return std::move(*complaint);
    request->chart = std::move(*std::get_if<ChartSelection>(&chart));
  }
  return document;
}

}  // namespace

ExitStatus validate(const DocumentWorkerHost& host, const ValidateArguments& arguments) {
  auto prepared = requestFor(arguments);
  if (const auto* complaint = std::get_if<Complaint>(&prepared)) return complain(*complaint);
  auto& request = *std::get_if<DocumentWorkerRequest>(&prepared);
  request.operation = Operation::validate;

  const auto answer = ask(host, request);
  if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(*complaint);
  const DocumentValidation& validation = *std::get_if<DocumentWorkerResponse>(&answer)->validation;
  if (arguments.json) {
    Console::print(toJson(validation) + "\n");
  } else {
    const ValidationScope scope = {.format = arguments.format,
                                   .expectsTable = request.expectedTable.has_value(),
                                   .expectsChart = request.chart.has_value()};
    Console::print(printable(arguments.document) + "\n" + describe(validation, scope));
  }
  return ExitStatus::success;
}

}  // namespace zelvo
