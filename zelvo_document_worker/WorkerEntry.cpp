#include "zelvo_document_worker/WorkerEntry.hpp"

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "Text/Unicode.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"
#include "zelvo_document_worker/WorkerConfinement.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumMessageBytes = DocumentWorkerWire::maximumMessageBytes;
constexpr std::size_t readChunkBytes = 65'536;

/// The whole input; none when reading fails or a chunk would pass the bound.
std::optional<std::string> readRequest(Input& input) {
  std::string request;
  // Room for the largest request, of which only the pages that are written ever become resident: nothing is
  // copied for growth.
  request.reserve(maximumMessageBytes);
  // Not on the stack, whose limit a parent may have set to as little as 64 KiB.
  const auto chunk = std::make_unique_for_overwrite<char[]>(readChunkBytes);
  while (true) {
    const std::optional<std::size_t> count = input.read({chunk.get(), readChunkBytes});
    if (!count) return std::nullopt;
    if (*count == 0) return request;
    if (*count > maximumMessageBytes - request.size()) return std::nullopt;
    request.append(chunk.get(), *count);
  }
}

/// An operation that fails is answered too: with the error alone. Throws `ResponseTooLarge`.
DocumentWorkerResponse answer(DocumentWorkerRequest request) {
  try {
    return run(std::move(request));
  } catch (const ResponseTooLarge&) {
    throw;
  } catch (const DocumentError& error) {
    DocumentWorkerResponse response;
    response.error = Unicode::prefix(error.errorDescription(), DocumentWorkerWire::maximumErrorCharacters);
    return response;
  }
}

/// The response's text; none when it is too large to be sent.
std::optional<std::string> encoded(const DocumentWorkerResponse& response) {
  std::string text = toJson(response);
  if (text.size() > maximumMessageBytes) return std::nullopt;
  return text;
}

bool serve(Input& input, Output& output) {
  std::optional<std::string> request = readRequest(input);
  if (!request) return false;
  const auto response = encoded(answer(fromJson<DocumentWorkerRequest>(*std::move(request))));
  return response && output.write(*response);
}

}  // namespace

int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output) noexcept {
  try {
    if (!confineForWork(entitlements, limits)) return exitStatus::notConfined;
    return serve(input, output) ? exitStatus::answered : exitStatus::noResponse;
  } catch (const std::exception&) {
    // The request cannot be decoded, the response would be too large, or memory ran out. Writing comes last
    // and throws nothing, so nothing was written.
    return exitStatus::noResponse;
  }
}

}  // namespace zelvo
