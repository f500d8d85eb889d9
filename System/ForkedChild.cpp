#include "System/ForkedChild.hpp"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

#include "System/ChildExchange.hpp"
#include "System/SignalCleanup.hpp"

namespace zelvo {
namespace {

[[noreturn]] void becomeChild(const std::function<int()>& work, const Descriptor& input,
                              const Descriptor& output) {
  constexpr int noStreams = 71;
  SignalCleanup::leaveToParent();
  if (dup2(input.number(), STDIN_FILENO) < 0 || dup2(output.number(), STDOUT_FILENO) < 0) _exit(noStreams);
  // Without exit handlers: they would write the buffers copied from the parent a second time.
  _exit(work());
}

/// /dev/null, or where the root has no devices a pipe without a writer.
Descriptor emptyInput() {
  Descriptor null(open("/dev/null", O_RDONLY | O_CLOEXEC));
  std::array<int, 2> ends = {};
  if (null || pipe(ends.data()) != 0) return null;
  const Descriptor writeEnd(ends[1]);
  return Descriptor(ends[0]);
}

/// See `ChildStart`.
int startCopy(const std::function<int()>& work, ChildStreams& streams, pid_t& id) {
  const Descriptor input = emptyInput();
  if (!input) return errno;
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) return errno;
  Descriptor readEnd(ends[0]);
  const Descriptor writeEnd(ends[1]);
  if (fcntl(readEnd.number(), F_SETFL, O_NONBLOCK) != 0) return errno;

  id = fork();
  if (id < 0) return errno;
  if (id == 0) becomeChild(work, input, writeEnd);
  streams.output = std::move(readEnd);
  return 0;
}

}  // namespace

ChildResult runForkedChild(const std::function<int()>& work, std::size_t outputBytes,
                           std::chrono::milliseconds wallClock) {
  return runChild([&work](ChildStreams& streams, pid_t& id) { return startCopy(work, streams, id); }, {},
                  {.outputBytes = outputBytes, .wallClock = wallClock});
}

}  // namespace zelvo
