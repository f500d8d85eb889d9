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

/// Whether the response is a refusal and nothing else, or exactly what the operation gives.
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

WorkerReply decoded(std::string output, Operation operation) {
  try {
    auto response = fromJson<DocumentWorkerResponse>(std::move(output));
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
  auto output = exchange(workerPath_, encodedRequest(request), timeout_);
  if (auto* const failure = std::get_if<WorkerFailure>(&output)) return std::move(*failure);
  return decoded(std::move(*std::get_if<std::string>(&output)), request.operation);
}

}  // namespace zelvo
