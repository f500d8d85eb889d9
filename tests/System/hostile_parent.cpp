// hostile_parent MODE COMMAND [ARGUMENT...]
//
// Loads a filter that keeps a system call from doing its work, and becomes the command. MODE is the call
// (seccomp, prlimit, prctl), then "-fails" (it fails with EPERM) or "-pretends" (it returns success and does
// nothing); or "ptrace-kills": the process is killed at that call. What this program cannot do ends with
// status 2.

#include <cerrno>
#include <cstdio>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "System/ForeignFilter.hpp"

namespace {

using zelvo::testing::ForeignAnswer;

/// The calls that set a limit, for the three that matter: programs set and ask others when they start.
std::vector<ForeignAnswer> limitCalls(unsigned errorNumber) {
  std::vector<ForeignAnswer> answers;
  for (const std::uint32_t resource : {RLIMIT_CPU, RLIMIT_FSIZE, RLIMIT_NPROC}) {
    answers.push_back({SYS_prlimit64, errorNumber, {{1, resource}}});
    answers.push_back({SYS_setrlimit, errorNumber, {{0, resource}}});
  }
  return answers;
}

std::vector<ForeignAnswer> answersTo(const std::string& call, unsigned errorNumber) {
  if (call == "seccomp") return {{SYS_seccomp, errorNumber, {{0, SECCOMP_SET_MODE_FILTER}}}};
  if (call == "prctl") return {{SYS_prctl, errorNumber}};
  if (call == "prlimit") return limitCalls(errorNumber);
  return {};
}

}  // namespace

int main(int count, char** arguments) {
  constexpr int usageError = 2;
  if (count < 3) return usageError;
  const std::string mode = arguments[1];
  const auto dash = mode.find('-');
  const std::string answer = dash == std::string::npos ? "" : mode.substr(dash);
  auto answers = answersTo(mode.substr(0, dash), answer == "-fails" ? EPERM : 0);
  if (mode == "ptrace-kills")
    answers = {{SYS_ptrace, 0, {}, true}};
  else if (answer != "-fails" && answer != "-pretends")
    return usageError;
  if (answers.empty()) return usageError;
  if (zelvo::testing::loadForeignFilter(answers)) execv(arguments[2], arguments + 2);
  std::perror(arguments[2]);
  return usageError;
}
