#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

#include <array>

namespace zelvo {
namespace {

constexpr std::array<std::string_view, 4> operationNames = {"inspect", "extract", "create", "validate"};

}  // namespace

void encode(JsonWriter& writer, DocumentWorkerRequest::Operation operation) {
  writer.string(operationNames[static_cast<std::size_t>(operation)]);
}

void decode(JsonValue value, DocumentWorkerRequest::Operation& operation) {
  operation = decodeName<DocumentWorkerRequest::Operation>(value, operationNames);
}

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

void encode(JsonWriter& writer, const DocumentWorkerRequest& request) {
  encodeFields(writer, request);
}
void decode(JsonValue value, DocumentWorkerRequest& request) {
  decodeFields(value, request);
}
void encode(JsonWriter& writer, const DocumentWorkerResponse& response) {
  encodeFields(writer, response);
}
void decode(JsonValue value, DocumentWorkerResponse& response) {
  decodeFields(value, response);
}

}  // namespace zelvo
