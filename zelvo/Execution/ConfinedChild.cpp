#include "zelvo/ConfinedWork.hpp"

#include <exception>
#include <new>
#include <utility>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "System/Confinement.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo_document_worker/WorkerConfinement.hpp"

namespace zelvo {
namespace {

using Work = std::function<std::variant<std::string, Complaint>()>;

constexpr const char* childName = "The tool's confined child process";

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

std::variant<std::string, Complaint> resultOf(const Work& work) {
  try {
    return work();
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& refusal) {
    return Complaint{ExitStatus::refused, refusal.what()};
  }
}

/// Writes the result and returns a worker's status, or writes the complaint and returns the tool's.
int answer(const Work& work) {
  StandardOutput output;
  const auto result = resultOf(work);
  if (const auto* complaint = std::get_if<Complaint>(&result)) {
    const std::string message = wellFormed(complaint->message);
    const bool isWritten = output.write(Unicode::prefix(message, DocumentWorkerWire::maximumErrorCharacters));
    return isWritten ? static_cast<int>(complaint->status) : exitStatus::noResponse;
  }
  return output.write(*std::get_if<std::string>(&result)) ? exitStatus::answered : exitStatus::noResponse;
}

int confineAndAnswer(const Work& work) noexcept {
  try {
    returnLargeBlocks();
    if (!confineThisProcess()) return exitStatus::notConfined;
    return answer(work);
  } catch (const std::exception&) {
    return exitStatus::noResponse;
  }
}

/// A sanitizer ends the child with such a status, too, but writes nothing there.
bool isComplaint(const ChildResult& result) {
  const bool isStatus = result.code == static_cast<int>(ExitStatus::refused) ||
                        result.code == static_cast<int>(ExitStatus::usage);
  return result.outcome == ChildOutcome::exited && isStatus && !result.output.empty();
}

}  // namespace

std::variant<std::string, Complaint> runConfined(const Work& work) {
  ChildResult result =
      runForkedChild([&work] { return confineAndAnswer(work); }, DocumentWorkerWire::maximumMessageBytes,
                     DocumentWorkerHost::defaultTimeout);
  if (isComplaint(result)) return Complaint{static_cast<ExitStatus>(result.code), std::move(result.output)};
  if (const auto failure = WorkerFailure::of(result, {})) return complaintOf(*failure, childName);
  return std::move(result.output);
}

}  // namespace zelvo
