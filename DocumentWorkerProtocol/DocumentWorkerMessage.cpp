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

}  // namespace zelvo
