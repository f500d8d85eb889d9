#include <csignal>
#include <string>
#include <unistd.h>

#include <gtest/gtest.h>

#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {
namespace {

int say(std::size_t bytes, int status) {
  StandardOutput output;
  return output.write(std::string(bytes, 'x')) ? status : 99;
}

TEST(ForkedChild, OutputAndEnd) {
  constexpr std::size_t bound = 200'000;  // more than a pipe holds
  const struct {
    std::string name;
    std::function<int()> work;
    ChildOutcome outcome;
    int code;
    std::size_t outputBytes;
  } rows[] = {
      {"nothing", [] { return 0; }, ChildOutcome::exited, 0, 0},
      {"output and status", [] { return say(3, 7); }, ChildOutcome::exited, 7, 3},
      {"as much as may be", [] { return say(bound, 0); }, ChildOutcome::exited, 0, bound},
      {"a signal after output", [] { return say(3, 0) == 0 ? raise(SIGKILL) : 99; }, ChildOutcome::killed,
       SIGKILL, 3},
  };
  for (const auto& row : rows) {
    const ChildResult result = runForkedChild(row.work, bound);
    EXPECT_EQ(result.outcome, row.outcome) << row.name;
    EXPECT_EQ(result.code, row.code) << row.name;
    EXPECT_EQ(result.output, std::string(row.outputBytes, 'x')) << row.name;
  }
  // Also one that would write for ever is ended.
  const auto flood = [] {
    while (say(1, 0) == 0) {
    }
    return 0;
  };
  EXPECT_EQ(runForkedChild(flood, bound).outcome, ChildOutcome::outputTooLarge);
}

TEST(ForkedChild, SharesNothingThatItChanges) {
  int value = 1;
  const ChildResult result = runForkedChild([&value] { return ++value; }, 0);
  EXPECT_EQ(result.code, 2);
  EXPECT_EQ(value, 1);
}

}  // namespace
}  // namespace zelvo
