#include <array>
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

#include "System/Descriptor.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

/// Runs the act in a child with this standard input and output.
pid_t startWith(int input, int output, const std::function<bool()>& act) {
  const pid_t child = fork();
  if (child != 0) return child;
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  _exit(act() ? 0 : 1);
}

bool succeeds(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && status == 0;
}

/// Interrupts system calls every millisecond, and has none restarted.
void interruptOften() {
  struct sigaction action = {};
  action.sa_handler = [](int) {};
  sigaction(SIGALRM, &action, nullptr);
  const itimerval often = {{0, 1000}, {0, 1000}};
  setitimer(ITIMER_REAL, &often, nullptr);
}

TEST(StandardStreams, surviveInterruptionsAndASlowReader) {
  std::array<int, 2> toChild = {};
  std::array<int, 2> fromChild = {};
  ASSERT_EQ(pipe(toChild.data()) | pipe(fromChild.data()), 0);
  const pid_t child = startWith(toChild[0], fromChild[1], [] {
    interruptOften();
    std::array<char, 100> buffer = {};
    const auto count = StandardInput().read(buffer);
    if (!count || *count != 1) return false;
    std::string bytes;
    for (int i = 0; i < 100'000; ++i) {
      bytes += std::to_string(i) + ' ';
    }
    return StandardOutput().write(bytes);
  });
  close(toChild[0]);
  close(fromChild[1]);
  usleep(20'000);
  ASSERT_EQ(write(toChild[1], "x", 1), 1);

  std::string bytes;
  std::array<char, 10'000> buffer = {};
  for (ssize_t count = 0; (count = read(fromChild[0], buffer.data(), buffer.size())) > 0; usleep(2000)) {
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
  EXPECT_TRUE(succeeds(child));
  EXPECT_EQ(bytes.size(), 588'890U);
  EXPECT_EQ(bytes.substr(bytes.size() - 12), "99998 99999 ");
  close(toChild[1]);
  close(fromChild[0]);
}

TEST(StandardStreams, failWithoutASignalWhereNothingIsTaken) {
  std::array<int, 2> pipeEnds = {};
  ASSERT_EQ(pipe(pipeEnds.data()), 0);
  close(pipeEnds[0]);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  ASSERT_NE(file, nullptr);
  const auto fails = [] {
    const rlimit none = {0, 0};
    return ignoreSignalsOfWriting() && setrlimit(RLIMIT_FSIZE, &none) == 0 && !StandardOutput().write("x");
  };
  EXPECT_TRUE(succeeds(startWith(0, pipeEnds[1], fails))) << "a pipe that nobody reads";
  EXPECT_TRUE(succeeds(startWith(0, fileno(file.get()), fails))) << "a file under a limit";
  close(pipeEnds[1]);
}

TEST(StandardStreams, tellAFailedReadFromTheEnd) {
  const Descriptor folder(open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const Descriptor empty(open("/dev/null", O_RDONLY | O_CLOEXEC));
  std::array<char, 1> buffer = {};
  EXPECT_TRUE(succeeds(startWith(folder.number(), 1, [&] { return !StandardInput().read(buffer); })));
  EXPECT_TRUE(succeeds(startWith(empty.number(), 1, [&] { return StandardInput().read(buffer) == 0U; })));
}

}  // namespace
}  // namespace zelvo
