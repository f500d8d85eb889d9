#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <variant>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "DocumentWorkerHost/WorkerFailure.hpp"

/// What the hosts of the worker and of the cleaner share.
namespace zelvo {

/// The text of a request that carries a document; none when it is larger than a message may be.
template <typename Request>
std::optional<std::string> encodedRequest(const Request& request) {
  const std::size_t documentBytes = request.data.size();
  if (documentBytes >= DocumentWorkerHost::unsendableBytes) return std::nullopt;
  constexpr std::size_t roomForTheRest = 4096;
  std::string text = toJson(request, Base64::encodedSize(documentBytes) + roomForTheRest);
  if (text.size() > DocumentWorkerWire::maximumMessageBytes) return std::nullopt;
  return text;
}

/// Starts a worker or cleaner, sends it the text of a request, if there is one, and gives the text of the
/// response. Throws only `std::bad_alloc`.
std::variant<std::string, WorkerFailure> exchange(const std::string& path,
                                                  const std::optional<std::string>& request,
                                                  std::chrono::milliseconds timeout);

}  // namespace zelvo
