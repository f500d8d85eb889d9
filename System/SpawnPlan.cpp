#include "System/SpawnPlan.hpp"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace zelvo {
namespace {

/// The first number above the standard streams.
constexpr int firstOther = STDERR_FILENO + 1;

/// Moves a descriptor above the standard streams. In a host that has closed its own, a pipe's end could get
/// the number that another end must have in the child.
Descriptor aboveStandardStreams(int number) {
  Descriptor original(number);
  if (number >= firstOther) return original;
  return Descriptor(fcntl(number, F_DUPFD_CLOEXEC, firstOther));
}

bool stopBlocking(const Descriptor& descriptor) {
  const int flags = fcntl(descriptor.number(), F_GETFL);
  return flags >= 0 && fcntl(descriptor.number(), F_SETFL, flags | O_NONBLOCK) == 0;
}

}  // namespace

SpawnPlan::SpawnPlan() {
  note(posix_spawn_file_actions_init(&actions_));
  note(posix_spawnattr_init(&attributes_));

  sigset_t none;
  sigemptyset(&none);
  note(posix_spawnattr_setsigmask(&attributes_, &none));
  sigset_t all;
  sigfillset(&all);
  sigdelset(&all, SIGKILL);
  sigdelset(&all, SIGSTOP);
  note(posix_spawnattr_setsigdefault(&attributes_, &all));
  short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#if defined(__APPLE__)
  flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
  note(posix_spawnattr_setflags(&attributes_, flags));
}

SpawnPlan::~SpawnPlan() {
  posix_spawnattr_destroy(&attributes_);
  posix_spawn_file_actions_destroy(&actions_);
}

SpawnPlan::Pipe SpawnPlan::pipeTo(int standardStream) {
  Pipe pipe = makePipe();
  if (pipe.writeEnd && !stopBlocking(pipe.writeEnd)) note(errno);
  Descriptor observed(fcntl(pipe.readEnd.number(), F_DUPFD_CLOEXEC, firstOther));
  if (!observed) note(errno);
  connect(std::exchange(pipe.readEnd, std::move(observed)), standardStream);
  return pipe;
}

Descriptor SpawnPlan::pipeFrom(int standardStream) {
  Pipe pipe = makePipe();
  if (pipe.readEnd && !stopBlocking(pipe.readEnd)) note(errno);
  connect(std::move(pipe.writeEnd), standardStream);
  return std::move(pipe.readEnd);
}

int SpawnPlan::start(const ChildCommand& command, pid_t& id) {
// Where `__GLIBC_PREREQ` is not defined, a condition that contains it cannot be parsed.
#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
  // Descriptors that other code of the host did not mark close-on-exec.
  note(posix_spawn_file_actions_addclosefrom_np(&actions_, firstOther));
#endif
#endif
  if (error_ != 0) return error_;

  // posix_spawn does not write to the texts.
  std::vector<char*> arguments = {const_cast<char*>(command.program.c_str())};
  for (const std::string& argument : command.arguments) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  char* noEnvironment[] = {nullptr};
  return posix_spawn(&id, command.program.c_str(), &actions_, &attributes_, arguments.data(), noEnvironment);
}

SpawnPlan::Pipe SpawnPlan::makePipe() {
  int ends[2] = {};
#if defined(__APPLE__)
  const int result = ::pipe(ends);
#else
  const int result = ::pipe2(ends, O_CLOEXEC);
#endif
  if (result != 0) {
    note(errno);
    return {};
  }
  Pipe pipe = {.readEnd = aboveStandardStreams(ends[0]), .writeEnd = aboveStandardStreams(ends[1])};
  if (!pipe.readEnd || !pipe.writeEnd) note(errno);
  return pipe;
}

void SpawnPlan::connect(Descriptor childEnd, int standardStream) {
  if (!childEnd) return;
  note(posix_spawn_file_actions_adddup2(&actions_, childEnd.number(), standardStream));
  childEnds_.push_back(std::move(childEnd));
}

}  // namespace zelvo
