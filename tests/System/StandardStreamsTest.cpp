// Owns reading standard input and writing standard output by system calls.

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/SystemCallFailure.hpp"
#include "System/Descriptor.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

/// True if `act` returns true in a child with this standard input and output.
bool holdsWith(int input, int output, const std::function<bool()>& act) {
  const pid_t child = fork();
  if (child == 0) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    _exit(act() ? 0 : 1);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && status == 0;
}

TEST(StandardStreams, GoOnAfterAnInterruption) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  EXPECT_TRUE(holdsWith(ends[0], ends[1], [] {
    std::array<char, 8> buffer = {};
    const testing::FailingCall failingWrite("write", EINTR);
    if (!StandardOutput().write("one") || !failingWrite.hasFailed()) return false;
    const testing::FailingCall failingRead("read", EINTR);
    return StandardInput().read(buffer) == 3U && failingRead.hasFailed();
  }));
  for (const int end : ends)
    close(end);
}

TEST(StandardStreams, CompletePartialWrites) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  std::string bytes;
  for (int i = 0; i < 50'000; ++i)
    bytes += std::to_string(i);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDOUT_FILENO);
    struct sigaction action = {};  // without SA_RESTART, an alarm cuts a write that waits for the reader
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often = {{0, 1000}, {0, 1000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    _exit(StandardOutput().write(bytes) ? 0 : 1);
  }
  close(ends[1]);
  std::string received;
  std::array<char, 10'000> buffer = {};
  for (ssize_t count = 0; (count = read(ends[0], buffer.data(), buffer.size())) > 0; usleep(2000))
    received.append(buffer.data(), static_cast<std::size_t>(count));
  int status = 1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(received == bytes) << received.size();
  close(ends[0]);
}

TEST(StandardStreams, FailWithoutASignal) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  close(ends[0]);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  const auto fails = [] {
    const rlimit none = {0, 0};
    return ignoreSignalsOfWriting() && setrlimit(RLIMIT_FSIZE, &none) == 0 && !StandardOutput().write("x");
  };
  EXPECT_TRUE(holdsWith(0, ends[1], fails)) << "a pipe without a reader";
  EXPECT_TRUE(holdsWith(0, fileno(file.get()), fails)) << "a file under a limit";
  close(ends[1]);
}

TEST(StandardStreams, DistinguishAFailedReadFromTheEnd) {
  const Descriptor folder(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Descriptor empty(open("/dev/null", O_RDONLY | O_CLOEXEC));
  std::array<char, 1> buffer = {};
  EXPECT_TRUE(holdsWith(folder.number(), 1, [&] { return !StandardInput().read(buffer); }));
  EXPECT_TRUE(holdsWith(empty.number(), 1, [&] { return StandardInput().read(buffer) == 0U; }));
}

}  // namespace
}  // namespace zelvo
