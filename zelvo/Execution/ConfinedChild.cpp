#include "zelvo/Execution/ConfinedChild.hpp"

#include <exception>
#include <new>
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "Sandbox/ConfinedRun.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

using Work = std::function<Result<std::string>()>;

std::chrono::milliseconds childTimeout = DocumentWorkerHost::defaultTimeout;

constexpr const char* childName = "The tool's confined child process";

/// A worker's, so that its failures are named alike.
constexpr ConfinedStatuses statuses = {.notConfined = exitStatus::notConfined,
                                       .failed = exitStatus::noResponse};

/// Makes the allocator return freed blocks of this size and more to the system. By default it raises the
/// threshold to the largest block freed, and then keeps the memory of a document's parts.
void returnLargeBlocks() {
#if defined(__GLIBC__)
  constexpr int largeBlockBytes = 1 << 20;
  static_cast<void>(mallopt(M_MMAP_THRESHOLD, largeBlockBytes));
#endif
}

Result<std::string> resultOf(const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& refusal) {
    return CommandError{ExitStatus::refused, refusal.what()};
  }
}

/// Writes the result and returns a worker's exit status, or writes the error's message and returns the
/// tool's.
int workAndAnswer(const Work& work) {
  StandardOutput output;
  const Result<std::string> result = resultOf(work);
  if (result) return output.write(*result) ? exitStatus::answered : exitStatus::noResponse;
  const std::string message = wellFormed(result.error().message);
  const bool isWritten = output.write(Unicode::prefix(message, DocumentWorkerWire::maximumErrorCharacters));
  return isWritten ? static_cast<int>(result.error().status) : exitStatus::noResponse;
}

/// True if the child wrote a message. A sanitizer ends a child with such a status, too, but without output.
bool isError(const ChildResult& result) {
  const bool isStatus = result.code == static_cast<int>(ExitStatus::refused) ||
                        result.code == static_cast<int>(ExitStatus::usage);
  return result.outcome == ChildOutcome::exited && isStatus && !result.output.empty();
}

}  // namespace

void setConfinedChildTimeout(std::chrono::milliseconds timeout) {
  childTimeout = timeout;
}

Result<std::string> runConfinedChild(const Work& work) {
  const auto confineAndWork = [&work] {
    returnLargeBlocks();
    return runConfined(statuses, [&work] { return workAndAnswer(work); });
  };
  ChildResult result = runForkedChild(confineAndWork, DocumentWorkerWire::maximumMessageBytes, childTimeout);
  if (isError(result)) return CommandError{static_cast<ExitStatus>(result.code), std::move(result.output)};
  if (const auto failure = WorkerFailure::of(result, {})) return errorOf(*failure, childName);
  return std::move(result.output);
}

CommandError unreadableResult(const std::string& detail) {
  return errorOf({.kind = WorkerFailure::Kind::unreadableResponse, .detail = detail}, childName);
}

}  // namespace zelvo
