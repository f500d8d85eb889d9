#include "zelvo_document_worker/WorkerEntry.hpp"

#include <array>
#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <utility>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "System/Confinement.hpp"
#include "Text/Unicode.hpp"
#include "zelvo_document_worker/WorkerConfinement.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumMessageBytes = DocumentWorkerWire::maximumMessageBytes;
constexpr std::size_t readChunkBytes = 65'536;

/// Of an error that is reported, in user-perceived characters: details can quote texts of the document.
constexpr std::size_t maximumErrorCharacters = 500;

/// The whole input; none when reading fails or a chunk would pass the bound.
std::optional<std::string> readRequest(Input& input) {
  std::string request;
  // Room for the largest request, of which only the pages that are written ever become resident: nothing is
  // copied for growth.
  request.reserve(maximumMessageBytes);
  std::array<char, readChunkBytes> chunk;
  while (true) {
    const std::optional<std::size_t> count = input.read(chunk);
    if (!count) return std::nullopt;
    if (*count == 0) return request;
    if (*count > maximumMessageBytes - request.size()) return std::nullopt;
    request.append(chunk.data(), *count);
  }
}

bool serve(Input& input, Output& output, RequestHandler handle) {
  std::optional<std::string> request = readRequest(input);
  if (!request) return false;
  const auto response = handle(*std::move(request));
  return response && response->size() <= maximumMessageBytes && output.write(*response);
}

}  // namespace

int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output,
              RequestHandler handle) noexcept {
  try {
    if (!confineForWork(entitlements, limits)) return exitStatus::notConfined;
    return serve(input, output, handle) ? exitStatus::answered : exitStatus::noResponse;
  } catch (const std::exception&) {
    // The request cannot be decoded, or memory ran out. Writing comes last and throws nothing, so nothing was
    // written.
    return exitStatus::noResponse;
  }
}

int runWorkerProcess(RequestHandler handle) noexcept {
  try {
    warmUpUnwinder();
    const Confinement confinement = enterConfinement();
    StandardInput input;
    StandardOutput output;
    return runWorker(*confinement.entitlements, *confinement.limits, input, output, handle);
  } catch (const std::exception&) {
    // Memory ran out before anything was read.
    return exitStatus::notConfined;
  }
}

std::string reportedError(const DocumentError& error) {
  return std::string(Unicode::prefix(error.errorDescription(), maximumErrorCharacters));
}

}  // namespace zelvo
