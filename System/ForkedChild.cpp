#include "System/ForkedChild.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

#include "System/Descriptor.hpp"

namespace zelvo {
namespace {

constexpr std::size_t readBytes = 65536;  // what a pipe holds by default

/// The copy, which is killed if nobody has waited for it.
class Copy {
 public:
  explicit Copy(pid_t id) : id_(id) {}
  Copy(const Copy&) = delete;
  Copy& operator=(const Copy&) = delete;
  ~Copy() {
    if (id_ <= 0) return;
    kill();
    wait();
  }

  void kill() const { ::kill(id_, SIGKILL); }

  /// How it ended; -1 when the system does not tell, with the error number in errno.
  int wait() {
    const pid_t id = std::exchange(id_, 0);
    int status = 0;
    pid_t found = 0;
    do {
      found = waitpid(id, &status, 0);
    } while (found < 0 && errno == EINTR);
    return found < 0 ? -1 : status;
  }

 private:
  pid_t id_;
};

[[noreturn]] void becomeChild(const std::function<int()>& work, const Descriptor& writeEnd) {
  constexpr int noOutput = 71;
  if (dup2(writeEnd.number(), STDOUT_FILENO) < 0) _exit(noOutput);
  // Ends at once: what stands in this process's buffers is the parent's to write.
  _exit(work());
}

enum class Reading { ended, tooLarge, failed };

Reading readAll(const Descriptor& stream, std::string& output, std::size_t bound) {
  std::array<char, readBytes> buffer;
  while (true) {
    const ssize_t count = ::read(stream.number(), buffer.data(), buffer.size());
    if (count == 0) return Reading::ended;
    if (count < 0) {
      if (errno == EINTR) continue;
      return Reading::failed;
    }
    if (static_cast<std::size_t>(count) > bound - output.size()) return Reading::tooLarge;
    output.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

ChildResult failure(int error) {
  ChildResult result = {};
  result.outcome = ChildOutcome::failed;
  result.code = error;
  return result;
}

}  // namespace

ChildResult runForkedChild(const std::function<int()>& work, std::size_t outputBytes) {
  std::array<int, 2> ends = {};
  if (pipe(ends.data()) != 0) return failure(errno);
  const Descriptor readEnd(ends[0]);
  Descriptor writeEnd(ends[1]);

  const pid_t id = fork();
  if (id < 0) return failure(errno);
  if (id == 0) becomeChild(work, writeEnd);
  Copy copy(id);
  writeEnd.close();

  ChildResult result = {};
  const Reading reading = readAll(readEnd, result.output, outputBytes);
  const int readingError = errno;
  if (reading != Reading::ended) copy.kill();
  const int status = copy.wait();
  if (status < 0) return failure(errno);
  if (reading == Reading::failed) return failure(readingError);
  if (reading == Reading::tooLarge) {
    result.outcome = ChildOutcome::outputTooLarge;
    return result;
  }
  const bool isKilled = WIFSIGNALED(status);
  result.outcome = isKilled ? ChildOutcome::killed : ChildOutcome::exited;
  result.code = isKilled ? WTERMSIG(status) : WEXITSTATUS(status);
  return result;
}

}  // namespace zelvo
