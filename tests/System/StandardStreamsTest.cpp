// Owns reading standard input and writing standard output by system calls.

#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/SystemCallFailure.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

/// What a child writes in which the act holds.
std::string outputOf(const std::function<bool()>& act) {
  const ChildResult result = runForkedChild([&] { return act() ? 0 : 1; }, 100);
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  EXPECT_EQ(result.code, 0);
  return result.output;
}

/// What a read finds in a child whose standard input is this file, after one read that is interrupted.
std::optional<std::size_t> bytesReadOf(const char* file) {
  std::array<char, 8> buffer = {};
  dup2(open(file, O_RDONLY), STDIN_FILENO);
  const testing::FailingCall failing("read", EINTR);
  return StandardInput().read(buffer);
}

TEST(StandardStreams, GoOnAfterAnInterruptionAndAShortWrite) {
  for (const int error : {EINTR, testing::FailingCall::isShort}) {
    EXPECT_EQ(outputOf([&] {
                const testing::FailingCall failing("write", error);
                return StandardOutput().write("one") && failing.hasFailed();
              }),
              "one");
  }
  outputOf([] { return bytesReadOf("/dev/zero") == 8U; });
}

TEST(StandardStreams, DistinguishAFailedReadFromTheEnd) {
  outputOf([] { return !bytesReadOf("/") && bytesReadOf("/dev/null") == 0U; });
}

TEST(StandardStreams, FailWithoutASignal) {
  outputOf([] {  // a pipe without a reader
    std::array<int, 2> ends = {};
    return ignoreSignalsOfWriting() && pipe(ends.data()) == 0 && close(ends[0]) == 0 &&
           dup2(ends[1], STDOUT_FILENO) >= 0 && !StandardOutput().write("x");
  });
  outputOf([] {  // a file under a limit
    const rlimit none = {0, 0};
    return ignoreSignalsOfWriting() && dup2(fileno(std::tmpfile()), STDOUT_FILENO) >= 0 &&
           setrlimit(RLIMIT_FSIZE, &none) == 0 && !StandardOutput().write("x");
  });
}

}  // namespace
}  // namespace zelvo
