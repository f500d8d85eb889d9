#include "zelvo/ConfinedWork.hpp"

#include <cstddef>
#include <exception>
#include <new>
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "System/Confinement.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/WorkerConfinement.hpp"

namespace zelvo {
namespace {

/// As much as a worker may answer.
constexpr std::size_t maximumOutputBytes = 40U << 20;

/// The child's own status for "what I wrote is why the input is refused"; the others are a worker's.
constexpr int refusedStatus = 1;

bool confineThisProcess() {
  const Confinement confinement = enterConfinement();
  return confineForWork(*confinement.entitlements, *confinement.limits);
}

/// Blocks of this size and more are returned to the system when they are freed. The allocator would raise its
/// own threshold to the largest block freed, and then keep what the parts of a document took.
void returnLargeBlocks() {
#if defined(__GLIBC__)
  constexpr int largeBlockBytes = 1 << 20;
  static_cast<void>(mallopt(M_MMAP_THRESHOLD, largeBlockBytes));
#endif
}

/// Writes the result, or the refusal, and gives the status to end with.
int answer(const std::function<std::string()>& work) {
  StandardOutput output;
  std::string bytes;
  int status = exitStatus::answered;
  try {
    bytes = work();
  } catch (const std::bad_alloc&) {
    return exitStatus::noResponse;
  } catch (const std::exception& refusal) {
    bytes = refusal.what();
    status = refusedStatus;
  }
  return output.write(bytes) ? status : exitStatus::noResponse;
}

int confineAndAnswer(const std::function<std::string()>& work) noexcept {
  try {
    warmUpUnwinder();
    returnLargeBlocks();
    if (!confineThisProcess()) return exitStatus::notConfined;
    return answer(work);
  } catch (const std::exception&) {
    return exitStatus::noResponse;
  }
}

}  // namespace

std::variant<std::string, Complaint> runConfined(const std::function<std::string()>& work) {
  ChildResult result = runForkedChild([&work] { return confineAndAnswer(work); }, maximumOutputBytes);
  if (result.outcome == ChildOutcome::exited && result.code == refusedStatus)
    return Complaint{ExitStatus::refused, std::move(result.output)};
  if (const auto failure = WorkerFailure::of(result, "zelvo"))
    return Complaint{ExitStatus::workerFailed, failure->message()};
  return std::move(result.output);
}

}  // namespace zelvo
