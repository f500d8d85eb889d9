#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

#include <array>

namespace zelvo {
namespace {

constexpr std::array<std::string_view, 4> operationNames = {"inspect", "extract", "create", "validate"};

}  // namespace

std::vector<std::string_view> missingKeys(const DocumentWorkerRequest& request) {
  using enum DocumentWorkerRequest::Operation;
  const bool creates = request.operation == create;
  std::vector<std::string_view> keys;
  if ((creates || request.operation == extract) && !request.selection) keys.emplace_back("selection");
  if ((creates || request.operation == validate) && !request.format) keys.emplace_back("format");
  if (creates && !request.title) keys.emplace_back("title");
  return keys;
}

std::string_view rawValue(DocumentWorkerRequest::Operation operation) {
  return operationNames[static_cast<std::size_t>(operation)];
}

void encode(JsonWriter& writer, DocumentWorkerRequest::Operation operation) {
  writer.string(rawValue(operation));
}

void decode(JsonValue value, DocumentWorkerRequest::Operation& operation) {
  operation = decodeName<DocumentWorkerRequest::Operation>(value, operationNames);
}

}  // namespace zelvo
