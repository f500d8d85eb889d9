#include "Support/SystemCallFailure.hpp"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
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

bool failsWithErrno(std::string_view name) {
  const auto error = failureOf(name);
  if (error) errno = *error;
  return error.has_value();
}

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp,readability-identifier-naming): the
// linker's names.
extern "C" {

#define ZELVO_FAILING(NAME, RESULT, PARAMETERS, ARGUMENTS)       \
  RESULT __real_##NAME PARAMETERS;                               \
  RESULT __wrap_##NAME PARAMETERS;                               \
  RESULT __wrap_##NAME PARAMETERS {                              \
    return failsWithErrno(#NAME) ? -1 : __real_##NAME ARGUMENTS; \
  }

ZELVO_FAILING(dup2, int, (int from, int to), (from, to))
ZELVO_FAILING(fchmod, int, (int descriptor, mode_t mode), (descriptor, mode))
// Every third argument that fcntl takes fits a register, and is handed on in it.
ZELVO_FAILING(fcntl, int, (int descriptor, int command, long argument), (descriptor, command, argument))
ZELVO_FAILING(fork, pid_t, (), ())
ZELVO_FAILING(fsync, int, (int descriptor), (descriptor))
ZELVO_FAILING(mkostemp, int, (char* name, int flags), (name, flags))
ZELVO_FAILING(pipe, int, (int* ends), (ends))
ZELVO_FAILING(pipe2, int, (int* ends, int flags), (ends, flags))
ZELVO_FAILING(poll, int, (pollfd * waits, nfds_t count, int timeout), (waits, count, timeout))
ZELVO_FAILING(read, ssize_t, (int descriptor, void* bytes, std::size_t count), (descriptor, bytes, count))
ZELVO_FAILING(rename, int, (const char* from, const char* to), (from, to))
ZELVO_FAILING(wait4, pid_t, (pid_t id, int* status, int options, rusage* usage), (id, status, options, usage))
ZELVO_FAILING(waitpid, pid_t, (pid_t id, int* status, int options), (id, status, options))

ssize_t __real_write(int descriptor, const void* bytes, std::size_t count);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t count);
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t count) {
  const auto error = failureOf("write");
  if (error == FailingCall::isShort) return __real_write(descriptor, bytes, 1);
  if (error) errno = *error;
  return error ? -1 : __real_write(descriptor, bytes, count);
}

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
