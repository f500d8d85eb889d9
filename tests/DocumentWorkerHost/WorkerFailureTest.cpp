#include <cerrno>
#include <csignal>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using namespace std::chrono_literals;
using Kind = WorkerFailure::Kind;

struct Row {
  ChildResult result;
  Kind expected;
};

// What cannot be staged cheaply with a real process; the rest is in DocumentWorkerHostTest.
TEST(WorkerFailure, TellsTheLimitOfProcessorTimeFromOtherKills) {
  const std::vector<Row> rows = {
      {{.outcome = ChildOutcome::killed, .code = SIGKILL, .cpuTime = 1s}, Kind::killed},
      {{.outcome = ChildOutcome::killed, .code = SIGKILL, .cpuTime = 42s}, Kind::killed},
      {{.outcome = ChildOutcome::killed, .code = SIGKILL, .cpuTime = 44'900ms}, Kind::cpuTimeUsedUp},
      {{.outcome = ChildOutcome::killed, .code = SIGSEGV, .cpuTime = 45s}, Kind::crashed},
      {{.outcome = ChildOutcome::failed, .code = EMFILE}, Kind::notRun},
  };
  for (const Row& row : rows) {
    const auto failure = WorkerFailure::of(row.result, "/worker");
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, row.expected) << failure->message();
  }
  EXPECT_FALSE(WorkerFailure::of({.outcome = ChildOutcome::exited, .code = 0}, "/worker"));
}

}  // namespace
}  // namespace zelvo
