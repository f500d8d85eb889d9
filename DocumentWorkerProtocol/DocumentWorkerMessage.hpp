#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"

/// The request and the response of the worker, as JSON objects of their fields in the order of declaration:
/// `toJson`, `fromJson`.
namespace zelvo {

namespace DocumentWorkerWire {

/// The worker's code-signing identifier on systems that sign programs, for hosts that check it.
inline constexpr std::string_view signingIdentifier = "com.korrinet.document-worker";

/// The largest request and the largest response: 40 MiB of JSON.
inline constexpr std::int64_t maximumMessageBytes = 41'943'040;

/// The limit of a reported error, in user-perceived characters: details can quote texts of the document.
inline constexpr std::size_t maximumErrorCharacters = 500;

}  // namespace DocumentWorkerWire

/// A request to the worker. An operation ignores the fields that it does not use. Move-only.
struct DocumentWorkerRequest {
  enum class Operation { inspect, extract, create, validate };

  Operation operation = Operation::inspect;
  ByteBuffer data;         ///< the workbook; for `validate`, the document
  std::string sourceName;  ///< the name of the workbook in the results
  std::optional<TableSelection> selection = {};
  std::optional<DocumentFormat> format = {};
  std::optional<std::string> title = {};
  std::optional<ChartSelection> chart = {};
  std::optional<SourceTable> expectedTable = {};

  bool operator==(const DocumentWorkerRequest&) const = default;
};

/// The worker's response: the results of the operation, or the error alone. Move-only.
struct DocumentWorkerResponse {
  std::optional<WorkbookInspection> inspection;
  std::optional<SourceTable> table;
  std::optional<GeneratedDocument> document;
  std::optional<DocumentValidation> validation;
  std::optional<std::string> error;  ///< a sentence for the user

  bool operator==(const DocumentWorkerResponse&) const = default;
};

/// The keys that the request's operation needs and the request lacks.
std::vector<std::string_view> missingKeys(const DocumentWorkerRequest& request);

/// "inspect", "extract", "create" or "validate".
std::string_view rawValue(DocumentWorkerRequest::Operation operation);

void encode(JsonWriter& writer, DocumentWorkerRequest::Operation operation);
void decode(JsonValue value, DocumentWorkerRequest::Operation& operation);

template <ConstOrNot<DocumentWorkerRequest> Record>
void eachField(Record& request, const auto& field) {
  field("operation", request.operation);
  field("data", request.data);
  field("sourceName", request.sourceName);
  field("selection", request.selection);
  field("format", request.format);
  field("title", request.title);
  field("chart", request.chart);
  field("expectedTable", request.expectedTable);
}

template <ConstOrNot<DocumentWorkerResponse> Record>
void eachField(Record& response, const auto& field) {
  field("inspection", response.inspection);
  field("table", response.table);
  field("document", response.document);
  field("validation", response.validation);
  field("error", response.error);
}

}  // namespace zelvo
