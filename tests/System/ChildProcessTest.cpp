// Owns starting, exchanging with and ending children: other programs and forked copies.

#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
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

constexpr ChildBounds ample = {.outputBytes = 1 << 24, .wallClock = std::chrono::seconds(60)};

ChildResult runShell(const std::string& script, std::string_view input = "",
                     const ChildBounds& bounds = ample) {
  return runChildProcess({"/bin/sh", {"-c", script}}, input, bounds);
}

TEST(ChildProcess, ReportsHowTheChildEnded) {
  using enum ChildOutcome;
  const ChildBounds brief = {.outputBytes = 1 << 20, .wallClock = milliseconds(300)};
  const ChildBounds eightBytes = {.outputBytes = 8, .wallClock = std::chrono::seconds(60)};
  const struct {
    std::string script;
    ChildBounds bounds;
    ChildOutcome outcome;
    int code;
    std::string output;
  } rows[] = {
      {"exit 0", ample, exited, 0, ""},
      {"echo said; exit 78", ample, exited, 78, "said\n"},
      {"echo said; kill -SYS $$", ample, killed, SIGSYS, "said\n"},
      {"kill -KILL $$", ample, killed, SIGKILL, ""},
      {"printf 12345678", eightBytes, exited, 0, "12345678"},
      {"printf 123456789", eightBytes, outputTooLarge, 0, "12345678"},
      {"while :; do echo more; done", eightBytes, outputTooLarge, 0, "more\nmor"},
      {"exec sleep 60", brief, timedOut, 0, ""},
      {"while :; do echo more >&2; done", brief, timedOut, 0, ""},
      {"echo said; exec sleep 60 >&- 2>&-", brief, timedOut, 0, "said\n"},
      {"trap '' TERM PIPE; exec sleep 60", brief, timedOut, 0, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.script);
    const ChildResult result = runShell(row.script, "", row.bounds);
    EXPECT_EQ(result.outcome, row.outcome);
    EXPECT_EQ(result.code, row.code);
    EXPECT_EQ(result.output, row.output);
  }
  EXPECT_FALSE(testing::leavesChild());
}

TEST(ChildProcess, ReportsWhyNothingWasStarted) {
  for (const auto& [program, error] : {std::pair{"/no/such/program", ENOENT}, std::pair{"/", EACCES}}) {
    const ChildResult result = runChildProcess({program, {}}, "ignored", ample);
    EXPECT_EQ(result.outcome, ChildOutcome::failed) << program;
    EXPECT_EQ(result.code, error) << program;
  }
}

TEST(ChildProcess, WritesAndReadsAtTheSameTime) {
  std::string input;
  for (int i = 0; input.size() < 5'000'000; ++i)
    input += std::to_string(i) + '\n';
  const ChildResult copied = runShell("cat", input);
  EXPECT_EQ(copied.outcome, ChildOutcome::exited);
  EXPECT_TRUE(copied.output == input) << copied.output.size() << " of " << input.size() << " bytes came back";
  EXPECT_EQ(copied.inputBytesRead, input.size());
  EXPECT_EQ(runShell("head -c 7 >/dev/null; kill -SYS $$", input).inputBytesRead, 7U);

  const ChildResult slow = runShell("sleep 0.2; wc -c; sleep 0.2; echo late", input);
  EXPECT_EQ(slow.output, std::to_string(input.size()) + "\nlate\n");

  const ChildResult unread = runShell("exec <&-; echo unread", input);
  EXPECT_EQ(unread.outcome, ChildOutcome::exited);
  EXPECT_EQ(unread.output, "unread\n");
  EXPECT_EQ(unread.inputBytesRead, 0U);
}

TEST(ChildProcess, KeepsTheStartOfStandardError) {
  const ChildResult result = runShell("head -c 1000000 /dev/zero >&2; echo reason >&2; echo answer");
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  EXPECT_EQ(result.errorOutput, std::string(65536, '\0'));
  EXPECT_EQ(result.output, "answer\n");
}

TEST(ChildProcess, PassesNothingOn) {
  EXPECT_EQ(runChildProcess({"/usr/bin/env", {}}, "", ample).output, "");

  const int leaking = open("/dev/null", O_RDONLY);
  const std::string number = std::to_string(leaking);
  EXPECT_EQ(runShell("[ -e /proc/self/fd/" + number + " ] && echo open || echo closed").output, "closed\n");
  close(leaking);

  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  auto* const handler = std::signal(SIGTERM, SIG_IGN);
  const ChildResult signalled = runShell("kill -TERM $$");
  static_cast<void>(std::signal(SIGTERM, handler));
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(signalled.code, SIGTERM) << "a signal was blocked or ignored";
}

TEST(ChildProcess, WorksInAHostWithoutStandardStreams) {
  const pid_t host = fork();
  if (host == 0) {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
      close(stream);
    const ChildResult result = runShell("cat; echo errors >&2", "input");
    _exit(result.output == "input" && result.errorOutput == "errors\n" ? 0 : 1);
  }
  int status = 0;
  waitpid(host, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(ChildProcess, MeasuresTimeAndMemory) {
  const ChildResult busy = runShell("i=0; while [ $i -lt 100000 ]; do i=$((i+1)); done");
  const ChildResult idle = runShell("sleep 0.3");
  EXPECT_GT(busy.cpuTime, milliseconds(20));
  EXPECT_LT(idle.cpuTime, milliseconds(20));
  constexpr std::uint64_t kept = 40'000'000;
  const ChildResult large = runShell("head -c 50000000 /dev/zero | tail -c 40000000 >/dev/null");
  EXPECT_GT(large.peakMemoryBytes, kept);
  EXPECT_LT(large.peakMemoryBytes, 100 * kept);
}

/// Fails one use of a call while `start` runs a child that exits with status 3.
struct FailedCall {
  const char* call;
  int error;
  ChildOutcome outcome;
  int code;
};

void expectSurvival(const FailedCall& row, const std::function<ChildResult()>& start,
                    const std::string& output) {
  const std::size_t descriptors = testing::openDescriptors();
  // Each of the first uses in turn: of three pipes, three streams, and several waits.
  for (std::size_t skipped = 0; skipped < 6; ++skipped) {
    SCOPED_TRACE(std::string(row.call) + " " + std::to_string(row.error) + " " + std::to_string(skipped));
    const testing::FailingCall failing(row.call, row.error, skipped);
    const ChildResult result = start();
    const bool hasFailed = row.call == std::string_view("dup2") ? skipped < 2 : failing.hasFailed();
    EXPECT_TRUE(hasFailed || skipped > 0);
    if (!hasFailed) break;
    EXPECT_EQ(result.outcome, row.outcome);
    EXPECT_EQ(result.code, row.code);
    if (row.code == 3) {
      EXPECT_EQ(result.output, output);
    }
    EXPECT_EQ(testing::openDescriptors(), descriptors);
    // A child that the system denies cannot be waited for.
    if (row.error == ECHILD) {
      waitpid(-1, nullptr, 0);
    } else {
      EXPECT_FALSE(testing::leavesChild());
    }
  }
}

TEST(ChildProcess, SurvivesSystemCallsThatFail) {
  using enum ChildOutcome;
  const std::string input(100'000, 'x');  // more than a pipe holds
  for (const FailedCall& row : {FailedCall{"pipe2", EMFILE, failed, EMFILE},
                                {"fcntl", EBADF, failed, EBADF},
                                {"posix_spawn", EAGAIN, failed, EAGAIN},
                                {"poll", ENOMEM, failed, ENOMEM},
                                {"poll", EINTR, exited, 3},
                                {"write", EIO, failed, EIO},
                                {"write", EINTR, exited, 3},
                                {"read", EIO, failed, EIO},
                                {"read", EAGAIN, exited, 3},
                                {"wait4", EINTR, exited, 3},
                                {"wait4", ECHILD, failed, ECHILD}})
    expectSurvival(
        row, [&] { return runShell("cat; exit 3", input); }, input);
}

TEST(ForkedChild, SurvivesSystemCallsThatFail) {
  using enum ChildOutcome;
  constexpr int statusWithoutStreams = 71;
  for (const FailedCall& row : {FailedCall{"pipe", EMFILE, failed, EMFILE},
                                {"fcntl", EBADF, failed, EBADF},
                                {"fork", EAGAIN, failed, EAGAIN},
                                {"poll", ENOMEM, failed, ENOMEM},
                                {"poll", EINTR, exited, 3},
                                {"wait4", EINTR, exited, 3},
                                {"dup2", EMFILE, exited, statusWithoutStreams}})  // in the child
    expectSurvival(
        row, [] { return runForkedChild([] { return 3; }, 0); }, "");
}

int writeOutput(std::size_t bytes, int status) {
  return StandardOutput().write(std::string(bytes, 'x')) ? status : 99;
}

TEST(ForkedChild, ReportsOutputAndEnd) {
  using enum ChildOutcome;
  constexpr std::size_t bound = 200'000;  // more than a pipe holds
  int value = 1;
  const struct {
    std::function<int()> work;
    ChildOutcome outcome;
    int code;
    std::size_t bytes;
  } rows[] = {
      {[&] { return ++value; }, exited, 2, 0},
      {[] { return writeOutput(bound, 7); }, exited, 7, bound},
      {[] { return writeOutput(bound + 1, 0); }, outputTooLarge, 0, bound},
      {[] { return writeOutput(3, 0) == 0 ? raise(SIGKILL) : 99; }, killed, SIGKILL, 3},
      {[] { return pause(); }, timedOut, 0, 0},
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
  const auto compute = [] {
    while (std::clock() < CLOCKS_PER_SEC / 10) {
    }
    return 0;
  };
  EXPECT_GE(runForkedChild(compute, 0).cpuTime, milliseconds(50));
}

TEST(ForkedChild, ReadsNothingOfTheParentsInput) {
  std::array<int, 2> ends = {};
  ASSERT_EQ(pipe(ends.data()), 0);
  const int before = dup(STDIN_FILENO);
  dup2(ends[0], STDIN_FILENO);
  ASSERT_EQ(write(ends[1], "secret", 6), 6);
  std::array<char, 8> buffer = {};
  const auto work = [&] { return static_cast<int>(StandardInput().read(buffer).value_or(99)); };
  EXPECT_EQ(runForkedChild(work, 0).code, 0);
  dup2(before, STDIN_FILENO);
  for (const int descriptor : {before, ends[0], ends[1]})
    close(descriptor);
}

}  // namespace
}  // namespace zelvo
