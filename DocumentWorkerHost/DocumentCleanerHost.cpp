#include "DocumentWorkerHost/DocumentCleanerHost.hpp"

#include <utility>

#include "DocumentWorkerHost/MessageExchange.hpp"

namespace zelvo {
namespace {

using Kind = WorkerFailure::Kind;

/// Whether the response is a refusal and nothing else, or complete.
bool isComplete(const DocumentCleanerResponse& response) {
  const bool isRefusal = response.error.has_value();
  return response.document.has_value() == !isRefusal && response.report.has_value() == !isRefusal &&
         (isRefusal ? !response.version : response.version == DocumentCleanerWire::version);
}

}  // namespace

DocumentCleanerHost::DocumentCleanerHost(std::string cleanerPath, std::chrono::milliseconds timeout)
    : cleanerPath_(std::move(cleanerPath)), timeout_(timeout) {}

CleanerReply DocumentCleanerHost::send(const DocumentCleanerRequest& request) const {
  const auto text = encodedRequest(request);
  if (!text) return WorkerFailure{Kind::requestTooLarge};
  auto output = exchange(cleanerPath_, *text, timeout_);
  if (auto* const failure = std::get_if<WorkerFailure>(&output)) return std::move(*failure);
  try {
    auto response = fromJson<DocumentCleanerResponse>(std::move(*std::get_if<std::string>(&output)));
    if (isComplete(response)) return response;
    return WorkerFailure{Kind::unreadableResponse, 0, "It does not answer the request."};
  } catch (const DecodingError& error) {
    return WorkerFailure{Kind::unreadableResponse, 0, error.what()};
  }
}

}  // namespace zelvo
