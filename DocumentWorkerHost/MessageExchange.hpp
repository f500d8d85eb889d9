#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "DocumentWorkerHost/WorkerFailure.hpp"

/// Common code of the hosts of the worker and of the cleaner.
namespace zelvo {

/// The text of a request that carries a document. Returns nullopt if the document alone is too large.
template <typename Request>
std::optional<std::string> encodedRequest(const Request& request) {
  const std::size_t documentBytes = request.data.size();
  if (documentBytes >= DocumentWorkerHost::unsendableBytes) return std::nullopt;
  constexpr std::size_t bytesOfOtherFields = 4096;
  return toJson(request, Base64::encodedSize(documentBytes) + bytesOfOtherFields);
}

/// Starts a worker or cleaner, sends it the text of a request and returns the text of the response. Does not
/// send a request above the limit on messages. Throws only `std::bad_alloc`.
std::variant<std::string, WorkerFailure> exchange(const std::string& path, std::string_view request,
                                                  std::chrono::milliseconds timeout);

}  // namespace zelvo
