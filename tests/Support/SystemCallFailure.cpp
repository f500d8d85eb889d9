#include "Support/SystemCallFailure.hpp"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

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

// Every argument and every result fits a register and is passed on in it, whatever its type.
#define ZELVO_FAILING(NAME)                                                 \
  long __real_##NAME(long a, long b, long c, long d, long e);               \
  long __wrap_##NAME(long a, long b, long c, long d, long e);               \
  long __wrap_##NAME(long a, long b, long c, long d, long e) {              \
    const auto error = failureOf(#NAME);                                    \
    if (error == FailingCall::isShort) return __real_##NAME(a, b, 1, d, e); \
    if (error) errno = *error;                                              \
    return error ? -1 : __real_##NAME(a, b, c, d, e);                       \
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
ZELVO_FAILING(read)
ZELVO_FAILING(rename)
ZELVO_FAILING(renameat2)
ZELVO_FAILING(wait4)
ZELVO_FAILING(waitpid)
ZELVO_FAILING(write)

// Returns the error number, and leaves errno alone.
using SpawnActions = posix_spawn_file_actions_t;
int __real_posix_spawn(pid_t* id, const char* path, const SpawnActions* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment);
int __wrap_posix_spawn(pid_t* id, const char* path, const SpawnActions* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment);
int __wrap_posix_spawn(pid_t* id, const char* path, const SpawnActions* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment) {
  const auto error = failureOf("posix_spawn");
  return error ? *error : __real_posix_spawn(id, path, actions, attributes, arguments, environment);
}

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
  constexpr int searched = 1024;
  std::size_t count = 0;
  for (int descriptor = 0; descriptor < searched; ++descriptor)
    count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
  return count;
}

bool leavesChild() {
  return waitpid(-1, nullptr, WNOHANG) >= 0;
}

}  // namespace zelvo::testing
