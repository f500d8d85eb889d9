#include "System/ChildProcess.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "System/ChildExchange.hpp"
#include "System/Descriptor.hpp"
#include "System/SignalCleanup.hpp"
#include "System/SpawnPlan.hpp"

namespace zelvo {
namespace {

using Clock = std::chrono::steady_clock;

/// The default capacity of a pipe.
constexpr std::size_t readBytes = 65536;
/// Longer than any error message. Further output is read and discarded.
constexpr std::size_t keptErrorBytes = 65536;
/// Keeps sums with the clock's time in range.
constexpr std::chrono::milliseconds longestWallClock = std::chrono::hours(24 * 365);

/// A started child. The destructor kills it if it is still running.
class Child {
 public:
  explicit Child(pid_t id) : id_(id), cleanup_(id) {}
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() { killAndWait(); }

  bool isGone() const { return isGone_; }

  /// Checks whether the child has ended, or waits for its end, by the `options` of `wait4`.
  void look(int options) {
    const SignalCleanup::Hold hold;  // after the wait, the ID may belong to another process
    pid_t found = 0;
    do {
      found = wait4(id_, &status_, options, &usage_);
    } while (found < 0 && errno == EINTR);
    if (found < 0) error_ = errno;
    isGone_ = found != 0;
    if (isGone_) cleanup_.clear();
  }

  /// Returns false if the child is still running at the deadline.
  bool endsBefore(Clock::time_point deadline) {
    constexpr std::chrono::microseconds firstPause{50};
    constexpr std::chrono::microseconds longestPause{10'000};
    for (auto pause = firstPause;; pause = std::min(2 * pause, longestPause)) {
      look(WNOHANG);
      if (isGone_) return true;
      if (Clock::now() >= deadline) return false;
      std::this_thread::sleep_for(pause);
    }
  }

  void killAndWait() {
    if (isGone_) return;
    kill(id_, SIGKILL);
    look(0);
  }

  /// After its end: writes its exit status or signal and its resource usage to the result.
  void report(ChildResult& result) const {
    if (error_ != 0) {
      result.outcome = ChildOutcome::failed;
      result.code = error_;
      return;
    }
    const bool isKilled = WIFSIGNALED(status_);
    result.outcome = isKilled ? ChildOutcome::killed : ChildOutcome::exited;
    result.code = isKilled ? WTERMSIG(status_) : WEXITSTATUS(status_);
    for (const timeval& time : {usage_.ru_utime, usage_.ru_stime}) {
      result.cpuTime += std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
    }
#if defined(__APPLE__)
    constexpr std::uint64_t unit = 1;
#else
    constexpr std::uint64_t unit = 1024;
#endif
    result.peakMemoryBytes = static_cast<std::uint64_t>(usage_.ru_maxrss) * unit;
  }

 private:
  pid_t id_;
  SignalCleanup::Record cleanup_;
  bool isGone_ = false;
  int error_ = 0;
  int status_ = 0;
  rusage usage_ = {};
};

/// Whether a call that failed may be retried.
bool isTemporary(int error) {
  return error == EAGAIN || error == EINTR;
}

/// Writes as much as the pipe takes, and closes it after the last byte. Returns false after a failure; its
/// error number is in errno. No write raises SIGPIPE: `ChildStreams::unreadInput` keeps a read end open.
bool writeSome(Descriptor& stream, std::string_view& input) {
  const ssize_t count = ::write(stream.number(), input.data(), input.size());
  if (count < 0) return isTemporary(errno);
  input.remove_prefix(static_cast<std::size_t>(count));
  if (input.empty()) stream.close();
  return true;
}

enum class Reading { continues, tooLarge, failed };

/// Reads the available bytes and keeps up to `bound` bytes in total; closes the stream at its end. Returns
/// `tooLarge` if there are more. After `failed` the error number is in errno, and the output is incomplete.
Reading readSome(Descriptor& stream, std::string& kept, std::size_t bound) {
  std::array<char, readBytes> buffer;
  const ssize_t count = ::read(stream.number(), buffer.data(), buffer.size());
  if (count < 0) return isTemporary(errno) ? Reading::continues : Reading::failed;
  if (count == 0) stream.close();
  const auto received = static_cast<std::size_t>(count);
  const std::size_t accepted = std::min(received, bound - kept.size());
  kept.append(buffer.data(), accepted);
  return accepted == received ? Reading::continues : Reading::tooLarge;
}

int millisecondsUntil(Clock::time_point deadline) {
  constexpr std::chrono::milliseconds longestSleep = std::chrono::hours(1);
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
  return static_cast<int>(std::clamp(left, std::chrono::milliseconds(0), longestSleep).count());
}

/// The number of bytes in a pipe.
std::uint64_t bytesIn(const Descriptor& pipe) {
  int count = 0;
  return ioctl(pipe.number(), FIONREAD, &count) == 0 ? static_cast<std::uint64_t>(count) : 0;
}

/// Writes and reads until the child has closed both outputs. Returns the reason if the child must be killed.
std::optional<ChildOutcome> exchange(ChildStreams& streams, std::string_view& input,
                                     const ChildBounds& bounds, Clock::time_point deadline,
                                     ChildResult& result) {
  const auto failed = [&result] {
    result.code = errno;
    return ChildOutcome::failed;
  };
  if (input.empty()) streams.input.close();
  while (streams.output || streams.errors) {
    // A closed stream has the number -1, which poll skips.
    std::array<pollfd, 3> waits = {{{streams.input.number(), POLLOUT, 0},
                                    {streams.output.number(), POLLIN, 0},
                                    {streams.errors.number(), POLLIN, 0}}};
    if (poll(waits.data(), waits.size(), millisecondsUntil(deadline)) < 0) {
      if (isTemporary(errno)) continue;
      return failed();
    }
    if (waits[0].revents != 0 && !writeSome(streams.input, input)) return failed();
    if (waits[1].revents != 0) {
      const Reading reading = readSome(streams.output, result.output, bounds.outputBytes);
      if (reading == Reading::failed) return failed();
      if (reading == Reading::tooLarge) return ChildOutcome::outputTooLarge;
    }
    if (waits[2].revents != 0 &&
        readSome(streams.errors, result.errorOutput, keptErrorBytes) == Reading::failed) {
      return failed();
    }
    if (Clock::now() >= deadline) return ChildOutcome::timedOut;
  }
  streams.input.close();
  return std::nullopt;
}

}  // namespace

ChildResult runChild(const ChildStart& start, std::string_view input, const ChildBounds& bounds) {
  ChildResult result = {};
  result.outcome = ChildOutcome::failed;
  const Clock::time_point deadline = Clock::now() + std::min(bounds.wallClock, longestWallClock);

  ChildStreams streams;
  pid_t id = 0;
  SignalCleanup::Hold untilRecorded;
  result.code = start(streams, id);
  if (result.code != 0) return result;
  Child child(id);
  untilRecorded.release();

  std::string_view unwritten = input;
  std::optional<ChildOutcome> endedFor = exchange(streams, unwritten, bounds, deadline, result);
  if (!endedFor && !child.endsBefore(deadline)) endedFor = ChildOutcome::timedOut;
  child.killAndWait();
  const int code = result.code;
  child.report(result);
  if (streams.unreadInput)
    result.inputBytesRead = input.size() - unwritten.size() - bytesIn(streams.unreadInput);
  if (endedFor) {
    result.outcome = *endedFor;
    result.code = code;
  }
  return result;
}

ChildResult runChildProcess(const ChildCommand& command, std::string_view input, const ChildBounds& bounds) {
  const auto start = [&command](ChildStreams& streams, pid_t& id) {
    SpawnPlan plan;
    auto [readEnd, writeEnd] = plan.pipeTo(STDIN_FILENO);
    streams.input = std::move(writeEnd);
    streams.unreadInput = std::move(readEnd);
    streams.output = plan.pipeFrom(STDOUT_FILENO);
    streams.errors = plan.pipeFrom(STDERR_FILENO);
    return plan.start(command, id);
  };
  return runChild(start, input, bounds);
}

}  // namespace zelvo
