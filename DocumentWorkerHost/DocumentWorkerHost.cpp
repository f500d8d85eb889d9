#include "DocumentWorkerHost/DocumentWorkerHost.hpp"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerHost/MessageExchange.hpp"

namespace zelvo {
namespace {

using Kind = WorkerFailure::Kind;
using Operation = DocumentWorkerRequest::Operation;

// The most that an operation can return. A compromised worker can return anything: its lists are counted
// before memory is allocated for their elements.
constexpr std::size_t maximumSheets = 64;
constexpr std::size_t maximumColumns = 8;
constexpr std::size_t maximumRows = 201;  ///< without a header row
/// Validation returns the most: the 16 that the rules allow the expected table, and its own.
constexpr std::size_t maximumWarnings = 17;

/// True if the response is a refusal and nothing else, or exactly what the operation returns.
bool answers(const DocumentWorkerResponse& response, Operation operation) {
  const bool isRefusal = response.error.has_value();
  const auto isDue = [&](std::initializer_list<Operation> operations) {
    return !isRefusal && std::find(operations.begin(), operations.end(), operation) != operations.end();
  };
  return response.inspection.has_value() == isDue({Operation::inspect}) &&
         response.table.has_value() == isDue({Operation::extract, Operation::create}) &&
         response.document.has_value() == isDue({Operation::create}) &&
         response.validation.has_value() == isDue({Operation::validate});
}

void requireWithinBounds(JsonObject response) {
  if (const auto inspection = response.optional("inspection")) {
    requireAtMost(maximumSheets, inspection->object().required("sheets"));
    requireAtMost(maximumWarnings, inspection->object().required("warnings"));
  }
  if (const auto table = response.optional("table")) {
    requireAtMost(maximumColumns, table->object().required("columns"));
    requireAtMost(maximumRows, table->object().required("rows"));
    requireAtMost(maximumWarnings, table->object().required("warnings"));
    for (const JsonValue row : table->object().required("rows").array())
      requireAtMost(maximumColumns, row);
  }
  if (const auto document = response.optional("document")) {
    requireAtMost(maximumWarnings, document->object().required("validation").object().required("warnings"));
  }
  if (const auto validation = response.optional("validation"))
    requireAtMost(maximumWarnings, validation->object().required("warnings"));
}

WorkerReply decoded(std::string output, Operation operation) {
  try {
    const JsonDocument document(std::move(output));
    requireWithinBounds(document.root().object());
    DocumentWorkerResponse response;
    decode(document.root(), response);
    if (answers(response, operation)) return response;
    return WorkerFailure{Kind::unreadableResponse, 0, "It does not answer the request."};
  } catch (const DecodingError& error) {
    return WorkerFailure{Kind::unreadableResponse, 0, error.what()};
  }
}

}  // namespace

DocumentWorkerHost::DocumentWorkerHost(std::string workerPath, std::chrono::milliseconds timeout)
    : workerPath_(std::move(workerPath)), timeout_(timeout) {}

WorkerReply DocumentWorkerHost::send(const DocumentWorkerRequest& request) const {
  const std::optional<std::string> text = encodedRequest(request);
  if (!text) return WorkerFailure{Kind::requestTooLarge};
  return sendEncoded(*text, request.operation);
}

WorkerReply DocumentWorkerHost::sendEncoded(std::string_view request, Operation operation) const {
  auto output = exchange(workerPath_, request, timeout_);
  if (auto* const failure = std::get_if<WorkerFailure>(&output)) return std::move(*failure);
  return decoded(std::move(*std::get_if<std::string>(&output)), operation);
}

}  // namespace zelvo
