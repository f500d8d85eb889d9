#include "Sandbox/ConfinedRun.hpp"

#include <csignal>
#include <cstddef>
#include <string_view>
#include <utility>

#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

/// A bound on the child's output; several times the longest explanation.
constexpr std::size_t maximumExplanationBytes = 4096;

/// Writes the failure, if any, to standard output. Returns the exit status.
int confineAndReport() noexcept {
  try {
    const Confinement confinement = enterConfinement();
    const std::string_view failure = confinement.failure.empty()
                                         ? applySandboxPolicy(*confinement.entitlements, *confinement.limits)
                                         : confinement.failure;
    return StandardOutput().write(failure) ? 0 : 1;
  } catch (const std::exception&) {
    return 1;
  }
}

}  // namespace

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
