// Owns starting, exchanging with and ending children: other programs and forked copies.

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "Support/SystemCallFailure.hpp"
#include "System/ChildProcess.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

using std::chrono::milliseconds;
using enum ChildOutcome;

constexpr ChildBounds ample = {.outputBytes = 1 << 24, .wallClock = std::chrono::seconds(60)};

ChildResult runShell(const std::string& script, std::string_view input = "",
                     const ChildBounds& bounds = ample) {
  return runChildProcess({"/bin/sh", {"-c", script}}, input, bounds);
}

TEST(ChildProcess, ReportsHowTheChildEnded) {
  const ChildBounds brief = {.outputBytes = 1 << 20, .wallClock = milliseconds(300)};
  const ChildBounds eightBytes = {.outputBytes = 8, .wallClock = milliseconds::max()};
  const struct {
    std::string script;
    ChildBounds bounds;
    ChildOutcome outcome;
    int code;
    std::string output;
  } rows[] = {
      {"echo said; exit 78", eightBytes, exited, 78, "said\n"},
      {"echo said; kill -SYS $$", ample, killed, SIGSYS, "said\n"},
      {"printf 12345678", eightBytes, exited, 0, "12345678"},
      {"printf 123456789", eightBytes, outputTooLarge, 0, "12345678"},
      {"while :; do echo more; done", eightBytes, outputTooLarge, 0, "more\nmor"},
      {"while :; do echo more >&2; done", brief, timedOut, 0, ""},
      {"echo said; exec sleep 60 >&- 2>&-", brief, timedOut, 0, "said\n"},
      {"trap '' TERM PIPE; exec sleep 60", brief, timedOut, 0, ""},
  };
  for (const auto& row : rows) {
    const ChildResult result = runShell(row.script, "", row.bounds);
    EXPECT_EQ(result.outcome, row.outcome) << row.script;
    EXPECT_EQ(result.code, row.code) << row.script;
    EXPECT_EQ(result.output, row.output) << row.script;
  }
  EXPECT_FALSE(testing::leavesChild());
  const ChildResult none = runChildProcess({"/", {}}, "ignored", ample);
  EXPECT_EQ(none.outcome, failed);
  EXPECT_EQ(none.code, EACCES);
}

TEST(ChildProcess, WritesAndReadsAtTheSameTime) {
  const std::string input(5'000'000, 'x');
  const ChildResult echo = runShell("sleep 0.2; cat; head -c 1000000 /dev/zero >&2; echo late", input);
  EXPECT_TRUE(echo.output == input + "late\n");
  EXPECT_EQ(echo.inputBytesRead, input.size());
  EXPECT_EQ(echo.errorOutput, std::string(65536, '\0'));
  EXPECT_EQ(runShell("head -c 7 >/dev/null; kill -SYS $$", input).inputBytesRead, 7U);
  EXPECT_EQ(runShell("exec <&-; echo unread", input).output, "unread\n");
}

TEST(ChildProcess, PassesNothingOn) {
  EXPECT_EQ(runChildProcess({"/usr/bin/env", {}}, "", ample).output, "");
  const int leaking = open("/dev/null", O_RDONLY);
  const std::string number = std::to_string(leaking);
  EXPECT_EQ(runShell("[ -e /proc/self/fd/" + number + " ] && echo open || echo closed").output, "closed\n");
  close(leaking);

  const auto host = [] {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
    static_cast<void>(std::signal(SIGTERM, SIG_IGN));
    return runShell("kill -TERM $$").code;
  };
  EXPECT_EQ(runForkedChild(host, 0).code, SIGTERM) << "a signal was blocked or ignored";
}

TEST(ChildProcess, MeasuresTimeAndMemory) {
  const ChildResult busy = runShell("i=0; while [ $i -lt 100000 ]; do i=$((i+1)); done");
  EXPECT_GT(busy.cpuTime, milliseconds(20));
  EXPECT_LT(runShell("sleep 0.3").cpuTime, milliseconds(20));
  constexpr std::uint64_t kept = 40'000'000;
  const ChildResult large = runShell("head -c 50000000 /dev/zero | tail -c 40000000 >/dev/null");
  EXPECT_GT(large.peakMemoryBytes, kept);
  EXPECT_LT(large.peakMemoryBytes, 100 * kept);
}

TEST(ChildProcess, SurvivesSystemCallsThatFail) {
  const std::string input(100'000, 'x');  // more than a pipe holds
  const auto program = [&] { return runShell("cat; exit 3", input); };
  const auto copy = [] { return runForkedChild([] { return 3; }, 0); };
  const struct {
    std::function<ChildResult()> start;
    ChildOutcome outcome;
    std::string output;
    std::vector<std::pair<std::string, int>> calls;
  } rows[] = {
      {program, failed, "", {{"pipe2", EMFILE}, {"fcntl", EBADF}, {"posix_spawn", EAGAIN}, {"poll", ENOMEM}}},
      {program, failed, "", {{"write", EIO}, {"read", EIO}, {"wait4", ECHILD}}},
      {program, exited, input, {{"poll", EINTR}, {"write", testing::FailingCall::isShort}, {"write", EINTR}}},
      {program, exited, input, {{"read", EAGAIN}, {"wait4", EINTR}}},
      {copy, failed, "", {{"pipe", EMFILE}, {"fcntl", EBADF}, {"fork", EAGAIN}, {"poll", ENOMEM}}},
      {copy, exited, "", {{"poll", EINTR}, {"wait4", EINTR}}},
  };
  const std::size_t descriptors = testing::openDescriptors();
  for (const auto& [start, outcome, output, calls] : rows) {
    for (const auto& [call, error] : calls) {
      // The first uses of a call are of three pipes, three streams and several waits.
      for (std::size_t skipped = 0; skipped < 6; ++skipped) {
        SCOPED_TRACE(call + " " + std::to_string(error) + " " + std::to_string(skipped));
        const testing::FailingCall failing(call, error, skipped);
        const ChildResult result = start();
        EXPECT_TRUE(failing.hasFailed() || skipped > 0);
        if (!failing.hasFailed()) break;
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.code, outcome == failed ? error : 3);
        EXPECT_TRUE(outcome == failed || result.output == output);
        EXPECT_EQ(testing::openDescriptors(), descriptors);
        // A child that the system denies cannot be waited for.
        EXPECT_EQ(testing::leavesChild(), error == ECHILD);
        waitpid(-1, nullptr, 0);
      }
    }
  }
  const testing::FailingCall inTheChild("dup2", EMFILE);
  EXPECT_EQ(copy().code, 71);
}

TEST(ForkedChild, ReportsOutputAndEnd) {
  constexpr std::size_t bound = 200'000;  // more than a pipe holds
  int value = 1;
  const auto writeOutput = [](std::size_t bytes) { return StandardOutput().write(std::string(bytes, 'x')); };
  const struct {
    std::function<int()> work;
    ChildOutcome outcome;
    int code;
    std::size_t bytes;
  } rows[] = {
      {[&] { return ++value; }, exited, 2, 0},
      {[=] { return writeOutput(bound) ? 7 : 99; }, exited, 7, bound},
      {[=] { return writeOutput(bound + 1) ? 0 : 99; }, outputTooLarge, 0, bound},
      {[=] { return writeOutput(3) ? raise(SIGKILL) : 99; }, killed, SIGKILL, 3},
      {[] { return close(STDOUT_FILENO) + pause(); }, timedOut, 0, 0},
  };
  for (const auto& row : rows) {
    const ChildResult result =
        runForkedChild(row.work, bound, row.outcome == timedOut ? milliseconds(100) : ample.wallClock);
    EXPECT_EQ(result.outcome, row.outcome);
    EXPECT_EQ(result.code, row.code);
    EXPECT_EQ(result.output, std::string(row.bytes, 'x'));
  }
  EXPECT_EQ(value, 1) << "changed by the child";
}

TEST(ForkedChild, ReadsNothingOfTheParentsInput) {
  const auto parent = [] {
    dup2(open("/dev/zero", O_RDONLY), STDIN_FILENO);
    std::array<char, 8> buffer = {};
    return runForkedChild([&] { return static_cast<int>(StandardInput().read(buffer).value_or(99)); }, 0)
        .code;
  };
  EXPECT_EQ(runForkedChild(parent, 0).code, 0);
}

}  // namespace
}  // namespace zelvo
