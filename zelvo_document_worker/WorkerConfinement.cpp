#include "zelvo_document_worker/WorkerConfinement.hpp"

#include <csignal>
#include <cstddef>
#include <exception>
#include <string_view>

#include "System/Confinement.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/SandboxCheck.hpp"

namespace zelvo {
namespace {

/// The hardest workbook within the readers' limits takes a few seconds.
constexpr ResourceLimit cpuLimit = {.resource = Resource::cpuSeconds, .soft = 45, .hard = 45};
constexpr ResourceLimit fileLimit = {.resource = Resource::fileBytes, .soft = 0, .hard = 0};
constexpr ResourceLimit processLimit = {.resource = Resource::processes, .soft = 0, .hard = 0};

/// Bytes of the longest explanation, and many more.
constexpr std::size_t maximumExplanationBytes = 4096;

/// Takes the steps in order and returns which one failed, if any, as `Confinement::failure` does.
std::string_view failureOfConfining(EntitlementReader& entitlements, Limits& limits) {
  if (!sandboxIsEnabled(entitlements)) {
    return "The sandbox is not in force although it was set up. Usually a seccomp filter that the process "
           "inherited answers seccomp in place of the kernel, or, on macOS, the program was not signed "
           "with its entitlements.";
  }
  if (!limits.apply(cpuLimit)) {
    return "The limit of 45 seconds of processor time cannot be set. Usually the process was started with "
           "a lower hard limit (ulimit -t, LimitCPU= of systemd, a batch system), which must be at least "
           "45 seconds.";
  }
  if (!limits.apply(fileLimit)) {
    return "The limit of 0 bytes for files cannot be set. Usually a seccomp filter that the process "
           "inherited answers prlimit64.";
  }
  if (!limits.apply(processLimit)) {
    return "The limit of 0 further processes cannot be set. Usually a seccomp filter that the process "
           "inherited answers prlimit64.";
  }
  if (!limits.seal()) {
    return "The second seccomp filter cannot be loaded or is not in force. Usually a seccomp filter that "
           "the process inherited answers seccomp in place of the kernel.";
  }
  return {};
}

/// Writes the failure, if any, to standard output. Returns the status to end with.
int confineAndReport() noexcept {
  try {
    const Confinement confinement = enterConfinement();
    const std::string_view failure = confinement.failure.empty()
                                         ? failureOfConfining(*confinement.entitlements, *confinement.limits)
                                         : confinement.failure;
    return StandardOutput().write(failure) ? 0 : 1;
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace

bool confineForWork(EntitlementReader& entitlements, Limits& limits) {
  return failureOfConfining(entitlements, limits).empty();
}

std::string explainConfinementFailure() {
  ChildResult result = runForkedChild(confineAndReport, maximumExplanationBytes);
  if (result.outcome == ChildOutcome::exited && result.code == 0) return std::move(result.output);
  if (result.outcome == ChildOutcome::killed && result.code == SIGSYS) {
    return "A seccomp filter that the process inherited kills it by SIGSYS while it confines itself. The "
           "filter must allow seccomp, prctl and prlimit64, and must answer forbidden calls with an error "
           "number (SystemCallErrorNumber=EPERM of systemd) instead of killing: the process checks its own "
           "filter with calls that cannot succeed, such as ptrace and io_uring_setup.";
  }
  return "The check of the confinement could not be completed in a child process.";
}

}  // namespace zelvo
