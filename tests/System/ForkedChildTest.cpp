// Starting and ending a forked copy. How its output is read is tested with ChildProcess.

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/SystemCallFailure.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

using enum ChildOutcome;
using std::chrono::milliseconds;

TEST(ForkedChild, isKilledAtTheTimeLimit) {
  const auto sleepForEver = [] { return pause(); };
  EXPECT_EQ(runForkedChild(sleepForEver, 0, milliseconds(100)).outcome, timedOut);
  const auto closeOutputAndSleep = [] { return close(STDOUT_FILENO) + pause(); };
  EXPECT_EQ(runForkedChild(closeOutputAndSleep, 0, milliseconds(100)).outcome, timedOut);
}

TEST(ForkedChild, reportsProcessorTime) {
  const auto compute = [] {
    while (std::clock() < CLOCKS_PER_SEC / 10) {
    }
    return 0;
  };
  EXPECT_GE(runForkedChild(compute, 0).cpuTime, milliseconds(50));
}

TEST(ForkedChild, readsNothingOfTheParentsInput) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  const int before = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  ASSERT_EQ(write(ends[1], "secret", 6), 6);
  const ChildResult result = runForkedChild(
      [] {
        std::array<char, 8> buffer = {};
        return static_cast<int>(StandardInput().read(buffer).value_or(99));
      },
      0);
  dup2(before, STDIN_FILENO);
  for (const int descriptor : {before, ends[0], ends[1]})
    close(descriptor);
  EXPECT_EQ(result.outcome, exited);
  EXPECT_EQ(result.code, 0);
}

TEST(ForkedChild, survivesSystemCallsThatFail) {
  constexpr int statusWithoutStreams = 71;
  const struct {
    const char* call;
    int error;
    std::size_t skipped;
    ChildOutcome outcome;
    int code;
  } rows[] = {
      {"pipe", EMFILE, 0, failed, EMFILE},
      {"fcntl", EBADF, 0, failed, EBADF},
      {"fork", EAGAIN, 0, failed, EAGAIN},
      {"poll", ENOMEM, 0, failed, ENOMEM},
      {"poll", EINTR, 0, exited, 3},
      {"wait4", EINTR, 0, exited, 3},
      {"dup2", EMFILE, 0, exited, statusWithoutStreams},
      {"dup2", EMFILE, 1, exited, statusWithoutStreams},
  };
  const std::size_t descriptors = testing::openDescriptors();
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.error));
    const testing::FailingCall failing(row.call, row.error, row.skipped);
    const ChildResult result = runForkedChild([] { return 3; }, 0);
    EXPECT_EQ(result.outcome, row.outcome);
    EXPECT_EQ(result.code, row.code);
    EXPECT_EQ(testing::openDescriptors(), descriptors);
    EXPECT_FALSE(testing::leavesChild());
  }
}

}  // namespace
}  // namespace zelvo
