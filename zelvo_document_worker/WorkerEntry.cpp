#include "zelvo_document_worker/WorkerEntry.hpp"

#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "Sandbox/ConfinedRun.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumMessageBytes = DocumentWorkerWire::maximumMessageBytes;
constexpr std::size_t readChunkBytes = 65'536;

constexpr ConfinedStatuses statuses = {.notConfined = exitStatus::notConfined,
                                       .failed = exitStatus::noResponse};

/// Returns the whole input, or nullopt if reading fails or a chunk would exceed the bound.
std::optional<std::string> readRequest(Input& input) {
  std::string request;
  // Reserved for the largest request, so that nothing is copied as it grows. Only pages that are written
  // become resident.
  request.reserve(maximumMessageBytes);
  // Not on the stack: a parent may have set its limit to as little as 64 KiB.
  const auto chunk = std::make_unique_for_overwrite<char[]>(readChunkBytes);
  while (true) {
    const std::optional<std::size_t> count = input.read({chunk.get(), readChunkBytes});
    if (!count) return std::nullopt;
    if (*count == 0) return request;
    if (*count > maximumMessageBytes - request.size()) return std::nullopt;
    request.append(chunk.get(), *count);
  }
}

/// Makes the allocator use memory that was freed again, instead of returning it to the system. Otherwise
/// every part of a document is read into new pages, which the system must clear first. No other request of
/// this process needs the memory.
void keepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
}

/// If `handle` throws (the request cannot be decoded, the response would be too large, or memory ran out),
/// nothing has been written: writing comes last and throws nothing.
int serve(Input& input, Output& output, RequestHandler handle) {
  std::optional<std::string> request = readRequest(input);
  if (!request) return exitStatus::noResponse;
  const std::optional<std::string> response = handle(*std::move(request));
  const bool isWritten = response && response->size() <= maximumMessageBytes && output.write(*response);
  return isWritten ? exitStatus::answered : exitStatus::noResponse;
}

}  // namespace

int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output,
              RequestHandler handle) noexcept {
  return runConfined(entitlements, limits, statuses, [&] { return serve(input, output, handle); });
}

int runWorkerProcess(RequestHandler handle) noexcept {
  keepFreedMemory();
  return runConfined(statuses, [handle] {
    StandardInput input;
    StandardOutput output;
    return serve(input, output, handle);
  });
}

std::string reportedError(const DocumentError& error) {
  return std::string(Unicode::prefix(error.errorDescription(), DocumentWorkerWire::maximumErrorCharacters));
}

}  // namespace zelvo
