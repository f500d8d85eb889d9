#include "Support/SystemCallFailure.hpp"

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <sys/wait.h>

namespace {

using zelvo::testing::FailingCall;

struct Plan {
  std::string_view name;
  int error = 0;
  std::atomic<std::ptrdiff_t> usesUntilFailure = -1;  ///< negative: it has failed, or nothing is to fail
};
Plan plan;

/// The error number if this use of the call is the one that fails.
std::optional<int> failureOf(std::string_view name) {
  if (plan.name != name || plan.usesUntilFailure-- != 0) return std::nullopt;
  return plan.error;
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming): the
// linker's names.
extern "C" {

// Every argument and every result fits a register and is passed on in it, whatever its type. posix_spawn
// returns its error number.
#define ZELVO_FAILING(NAME)                                                    \
  long __real_##NAME(long a, long b, long c, long d, long e, long f);          \
  long __wrap_##NAME(long a, long b, long c, long d, long e, long f);          \
  long __wrap_##NAME(long a, long b, long c, long d, long e, long f) {         \
    const auto error = failureOf(#NAME);                                       \
    if (error == FailingCall::isShort) return __real_##NAME(a, b, 1, d, e, f); \
    if (!error) return __real_##NAME(a, b, c, d, e, f);                        \
    errno = *error;                                                            \
    return std::string_view(#NAME) == "posix_spawn" ? *error : -1;             \
  }

ZELVO_FAILING(dup2)
ZELVO_FAILING(fchmod)
ZELVO_FAILING(fcntl)
ZELVO_FAILING(fork)
ZELVO_FAILING(fsync)
ZELVO_FAILING(mkostemp)
ZELVO_FAILING(pipe)
ZELVO_FAILING(pipe2)
ZELVO_FAILING(poll)
ZELVO_FAILING(posix_spawn)
ZELVO_FAILING(read)
ZELVO_FAILING(rename)
ZELVO_FAILING(renameat2)
ZELVO_FAILING(wait4)
ZELVO_FAILING(waitpid)
ZELVO_FAILING(write)

}  // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming)

namespace zelvo::testing {

FailingCall::FailingCall(std::string_view name, int error, std::size_t skipped) {
  plan.name = name;
  plan.error = error;
  plan.usesUntilFailure = static_cast<std::ptrdiff_t>(skipped);
}

FailingCall::~FailingCall() {
  plan.name = {};
}

bool FailingCall::hasFailed() const {
  return plan.usesUntilFailure < 0;
}

std::size_t openDescriptors() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(descriptors, {}));
}

bool leavesChild() {
  return waitpid(-1, nullptr, WNOHANG) >= 0;
}

}  // namespace zelvo::testing
