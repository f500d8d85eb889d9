#include "DocumentWorkerProtocol/DocumentCleanerMessage.hpp"

namespace zelvo {

template <ConstOrNot<DocumentCleanerRequest> Record>
void eachField(Record& request, const auto& field) {
  field("version", request.version);
  field("sourceName", request.sourceName);
  field("data", request.data);
  field("sheets", request.sheets);
  field("unmerge", request.unmerge);
  field("plainFormats", request.plainFormats);
}

template <ConstOrNot<CleanedDocument> Record>
void eachField(Record& document, const auto& field) {
  field("data", document.data);
  field("sourceSHA256", document.sourceSHA256);
  field("outputSHA256", document.outputSHA256);
}

template <ConstOrNot<DocumentCleanerResponse> Record>
void eachField(Record& response, const auto& field) {
  field("version", response.version);
  field("document", response.document);
  field("report", response.report);
  field("error", response.error);
}

void encode(JsonWriter& writer, const DocumentCleanerRequest& request) {
  encodeFields(writer, request);
}
void decode(JsonValue value, DocumentCleanerRequest& request) {
  decodeFields(value, request);
}
void encode(JsonWriter& writer, const CleanedDocument& document) {
  encodeFields(writer, document);
}
void decode(JsonValue value, CleanedDocument& document) {
  decodeFields(value, document);
}
void encode(JsonWriter& writer, const DocumentCleanerResponse& response) {
  encodeFields(writer, response);
}
void decode(JsonValue value, DocumentCleanerResponse& response) {
  decodeFields(value, response);
}

}  // namespace zelvo
