// hostile_parent MODE COMMAND [ARGUMENT...]
//
// Loads a filter that keeps a system call from doing its work, and becomes the command. MODE is the call
// (seccomp, prlimit, prctl), then "-fails" (it fails with EPERM) or "-pretends" (it returns success and does
// nothing); or "ptrace-kills": the process is killed at that call. What this program cannot do ends with
// status 2.

#include <cerrno>
#include <map>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "System/ForeignFilter.hpp"

int main(int count, char** arguments) {
  constexpr int usageError = 2;
  if (count < 3) return usageError;
  using Answers = std::vector<zelvo::testing::ForeignAnswer>;
  std::map<std::string, Answers> modes = {{"ptrace-kills", {{SYS_ptrace, 0, {}, true}}}};
  for (const auto& [suffix, error] : {std::pair<std::string, unsigned>("-fails", EPERM), {"-pretends", 0}}) {
    modes["seccomp" + suffix] = {{SYS_seccomp, error, {{0, SECCOMP_SET_MODE_FILTER}}}};
    modes["prctl" + suffix] = {{SYS_prctl, error}};
    // Only the limits that matter: programs set and ask others when they start.
    Answers& limits = modes["prlimit" + suffix];
    for (const std::uint32_t resource : {RLIMIT_CPU, RLIMIT_FSIZE, RLIMIT_NPROC}) {
      limits.push_back({SYS_prlimit64, error, {{1, resource}}});
      limits.push_back({SYS_setrlimit, error, {{0, resource}}});
    }
  }
  const auto found = modes.find(arguments[1]);
  if (found != modes.end() && zelvo::testing::loadForeignFilter(found->second))
    execv(arguments[2], arguments + 2);
  return usageError;
}
