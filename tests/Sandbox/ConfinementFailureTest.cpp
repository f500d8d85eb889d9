// Owns the explanation of a confinement that fails.

#include <cerrno>
#include <string>
#include <sys/resource.h>
#include <vector>

#include <gtest/gtest.h>

#include "Sandbox/ConfinedRun.hpp"
#include "System/ForeignFilter.hpp"
#include "System/ForkedChild.hpp"
#include "System/StandardStreams.hpp"
#include "System/SystemCallFilters.hpp"

namespace zelvo {
namespace {

using testing::ForeignAnswer;

std::string explanationUnder(const std::vector<ForeignAnswer>& answers) {
  const auto explain = [&] {
    const bool isLoaded = answers.empty() || testing::loadForeignFilter(answers);
    return isLoaded && StandardOutput().write(explainConfinementFailure()) ? 0 : 1;
  };
  const ChildResult result = runForkedChild(explain, /*outputBytes=*/4096);
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  EXPECT_EQ(result.code, 0);
  return result.output;
}

TEST(ConfinementFailure, IsExplainedByItsStep) {
  const std::pair<ForeignAnswer, std::string> rows[] = {
      {{SYS_rt_sigaction, EPERM}, "SIGPIPE and SIGXFSZ cannot be ignored. "},
      {{SYS_prctl, EPERM, {{0, PR_SET_NO_NEW_PRIVS}}}, "PR_SET_NO_NEW_PRIVS cannot be set. "},
      {{SYS_prctl, EPERM, {{0, PR_SET_DUMPABLE}}}, "PR_SET_DUMPABLE cannot be cleared. "},
      {{SYS_connect, refusedByUs}, "A seccomp filter that the process inherited returns the error number "},
      {{SYS_seccomp, EPERM}, "The first seccomp filter cannot be loaded. "},
      {{SYS_seccomp, 0}, "The sandbox is not in force although it was set up. "},
      {{SYS_prlimit64, EPERM, {{1, RLIMIT_CPU}}},
       "The limit of 45 seconds of processor time cannot be set. "},
      {{SYS_prlimit64, 0, {{1, RLIMIT_FSIZE}}}, "The limit of 0 bytes for files cannot be set. "},
      {{SYS_prlimit64, EPERM, {{1, RLIMIT_NPROC}}}, "The limit of 0 further processes cannot be set. "},
      {{SYS_ptrace, 0, {}, true}, "A seccomp filter that the process inherited kills it by SIGSYS "},
  };
  EXPECT_EQ(explanationUnder({}), "");
  for (const auto& [answer, beginning] : rows)
    EXPECT_EQ(explanationUnder({answer}).substr(0, beginning.size()), beginning);
}

}  // namespace
}  // namespace zelvo
