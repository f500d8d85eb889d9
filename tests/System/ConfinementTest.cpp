// Owns the confinement as a process meets it: what it still allows, what kills, and hostile parents.

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <functional>
#include <map>
#include <poll.h>
#include <string>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "System/ChildProcess.hpp"
#include "System/Confinement.hpp"
#include "System/ForeignFilter.hpp"
#include "System/SandboxProbes.hpp"
#include "System/SystemCallFilters.hpp"
#include "System/SystemCallTrace.hpp"
#include "System/forbidden/Acts.hpp"

namespace zelvo {
namespace {

constexpr ChildBounds bounds = {.outputBytes = 4096, .wallClock = std::chrono::seconds(60)};

/// The answer to the question in a child, since a filter cannot be unloaded.
bool holdsInChild(const std::function<bool()>& question) {
  const pid_t child = fork();
  if (child == 0) _exit(question() ? 0 : 1);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status)) << "status " << status;
  return status == 0;
}

TEST(Confinement, LeavesWhatAWorkerNeeds) {
  const ChildResult result = runChildProcess({CONFINED_PROGRAM, {"work"}}, "zero ", bounds);
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  EXPECT_EQ(result.code, 0) << result.errorOutput;
  EXPECT_EQ(result.output, "zero one two");
}

TEST(Confinement, RefusesEverySystemCallThatIsNotOnTheList) {
#if defined(ZELVO_SANITIZE)
  GTEST_SKIP() << "the sanitizers need more";
#endif
  const ChildResult result = runChildProcess({CONFINED_PROGRAM, {"refused"}}, "", bounds);
  const auto [first, second] = std::minmax({long{SYS_munmap}, long{SYS_brk}});
  EXPECT_EQ(result.output, std::to_string(first) + ' ' + std::to_string(second) + ' ');
}

TEST(Confinement, KillsAtTheForbiddenSystemCall) {
  for (const auto& act : testing::forbiddenActs) {
    SCOPED_TRACE(act.name);
    const auto end = testing::runTraced(CONFINED_PROGRAM, std::string(act.name).c_str());
    EXPECT_TRUE(WIFSIGNALED(end.status) && WTERMSIG(end.status) == SIGSYS) << "status " << end.status;
    EXPECT_EQ(end.lastSystemCall, static_cast<std::uint64_t>(act.systemCall));
  }
}

TEST(Confinement, DetectsAParentThatPreventsIt) {
  for (const std::string call : {"seccomp", "prlimit", "prctl"}) {
    for (const std::string answer : {"-fails", "-pretends"}) {
      SCOPED_TRACE(call + answer);
      const ChildResult result =
          runChildProcess({HOSTILE_PARENT, {call + answer, CONFINED_PROGRAM, "work"}}, "", bounds);
      EXPECT_EQ(result.outcome, ChildOutcome::exited);
      EXPECT_EQ(result.code, 78);
      EXPECT_EQ(result.output, "");
    }
  }
}

TEST(Confinement, DetectsAPretendedSeal) {
  EXPECT_TRUE(holdsInChild([] {
    const Confinement confinement = enterConfinement();
    return confinement.failure.empty() && testing::loadForeignFilter({{SYS_seccomp, 0}}) &&
           !confinement.limits->seal();
  }));
}

TEST(SandboxProbes, RejectErrorNumbersOfOtherFilters) {
  constexpr std::string_view keys[] = {entitlement::appSandbox,        entitlement::networkClient,
                                       entitlement::networkServer,     entitlement::inherit,
                                       entitlement::userSelectedFiles, entitlement::appleEvents};
  for (const std::string_view key : keys)
    EXPECT_FALSE(everyProbeIsRefusedByUs(key)) << key << " without any filter";
  for (const unsigned answer : {0U, static_cast<unsigned>(EPERM), static_cast<unsigned>(ENOSYS)}) {
    EXPECT_TRUE(holdsInChild([&] {
      std::vector<testing::ForeignAnswer> answers;
      for (const long call : {SYS_openat, SYS_connect, SYS_bind, SYS_fcntl, SYS_unlinkat, SYS_kill})
        answers.push_back({call, answer});
      return testing::loadForeignFilter(answers) && std::ranges::none_of(keys, everyProbeIsRefusedByUs);
    })) << answer;
  }
}

TEST(SandboxProbes, SeeOurFilterAboveOneThatPretends) {
  EXPECT_TRUE(holdsInChild([] {
    if (!testing::loadForeignFilter({{SYS_openat, 0}, {SYS_connect, 0}, {SYS_kill, EPERM}})) return false;
    const Confinement confinement = enterConfinement();
    return confinement.failure.empty() &&
           confinement.entitlements->value(entitlement::appSandbox) == EntitlementValue::granted &&
           confinement.entitlements->value(entitlement::networkClient) == EntitlementValue::absent;
  }));
}

TEST(SandboxProbes, DetectAnInheritedFilterThatImitatesOurs) {
  EXPECT_TRUE(holdsInChild([] {
    if (!testing::loadForeignFilter({{SYS_connect, refusedByUs}})) return false;
    const Confinement confinement = enterConfinement();
    return !confinement.failure.empty() &&
           confinement.entitlements->value(entitlement::appSandbox) == EntitlementValue::absent;
  }));
}

/// The kernel's status of a process: "Name:\tvalue" lines.
std::map<std::string, std::string> statusOf(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  std::map<std::string, std::string> fields;
  for (std::string name, value; std::getline(file, name, ':') && std::getline(file >> std::ws, value);)
    fields[name] = value;
  return fields;
}

TEST(Confinement, ShowsInTheKernelsStatus) {
  std::array<int, 2> input = {};
  std::array<int, 2> leaked = {};
  ASSERT_EQ(pipe(input.data()) | pipe(leaked.data()), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(input[0], STDIN_FILENO);
    const Confinement confinement = enterConfinement();
    char byte = 0;
    _exit(confinement.limits->seal() && read(STDIN_FILENO, &byte, 1) == 1 ? 0 : 1);
  }
  close(leaked[1]);
  pollfd end = {leaked[0], POLLIN, 0};
  EXPECT_EQ(poll(&end, 1, 10'000), 1) << "the child still holds a descriptor that it inherited";

  auto status = statusOf(child);
  for (int i = 0; i < 1000 && status["Seccomp_filters"] != "2"; ++i) {
    usleep(10'000);
    status = statusOf(child);
  }
  EXPECT_EQ(status["Seccomp_filters"], "2");
  EXPECT_EQ(status["NoNewPrivs"], "1");
  constexpr unsigned long long signalsOfWriting = 1ULL << (SIGPIPE - 1) | 1ULL << (SIGXFSZ - 1);
  EXPECT_EQ(std::stoull(status["SigIgn"], nullptr, 16) & signalsOfWriting, signalsOfWriting);

  EXPECT_EQ(write(input[1], "x", 1), 1);
  int ended = 0;
  waitpid(child, &ended, 0);
  EXPECT_EQ(ended, 0);
  for (const int descriptor : {input[0], input[1], leaked[0]})
    close(descriptor);
}

#if defined(ZELVO_SANITIZE)
TEST(Confinement, LetsASanitizerReport) {
  const ChildResult result = runChildProcess({CONFINED_PROGRAM, {"overflow"}}, "", bounds);
  EXPECT_NE(result.errorOutput.find("SUMMARY: AddressSanitizer: heap-buffer-overflow"), std::string::npos)
      << result.errorOutput;
}
#endif

}  // namespace
}  // namespace zelvo
