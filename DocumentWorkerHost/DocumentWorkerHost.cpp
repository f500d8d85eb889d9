#include "DocumentWorkerHost/DocumentWorkerHost.hpp"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <utility>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using Kind = WorkerFailure::Kind;
using Operation = DocumentWorkerRequest::Operation;

constexpr std::size_t maximumMessageBytes = DocumentWorkerWire::maximumMessageBytes;

/// None when the document alone makes the request larger than a message may be.
std::optional<std::string> encoded(const DocumentWorkerRequest& request) {
  const std::size_t documentBytes = request.data.size();
  if (documentBytes >= DocumentWorkerHost::unsendableBytes) return std::nullopt;
  constexpr std::size_t roomForTheRest = 4096;
  return toJson(request, Base64::encodedSize(documentBytes) + roomForTheRest);
}

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
  const std::optional<std::string> input = encoded(request);
  if (!input) return WorkerFailure{Kind::requestTooLarge};
  return sendEncoded(*input, request.operation);
}

WorkerReply DocumentWorkerHost::sendEncoded(std::string_view request, Operation operation) const {
  if (request.size() > maximumMessageBytes) return WorkerFailure{Kind::requestTooLarge};
  ChildResult result = runChildProcess({.program = workerPath_, .arguments = {}}, request,
                                       {.outputBytes = maximumMessageBytes, .wallClock = timeout_});
  if (auto failure = WorkerFailure::of(result, workerPath_)) return *std::move(failure);
  return decoded(std::move(result.output), operation);
}

}  // namespace zelvo
