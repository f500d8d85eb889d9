#pragma once

#include <cstddef>
#include <cstdint>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <optional>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace zelvo::testing {

/// A system call that a filter of another program answers in the kernel's place.
struct ForeignAnswer {
  long systemCall;
  unsigned errorNumber;  ///< 0 pretends that the call succeeded
  /// Answers only calls in which the argument at `position` has the value.
  struct Condition {
    unsigned position;
    std::uint32_t value;
  };
  std::optional<Condition> condition = {};
  bool kills = false;  ///< kills the process instead, by SIGSYS
};

/// Loads a filter with these answers and allows everything else; written by hand, so that it shares
/// nothing with what it is to test.
inline bool loadForeignFilter(const std::vector<ForeignAnswer>& answers) {
  std::vector<sock_filter> program;
  const auto add = [&program](int code, std::size_t value, int toSkipIfOther = 0) {
    program.push_back({static_cast<std::uint16_t>(code), 0, static_cast<std::uint8_t>(toSkipIfOther),
                       static_cast<std::uint32_t>(value)});
  };
  for (const ForeignAnswer& answer : answers) {
    add(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr));
    add(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::size_t>(answer.systemCall), answer.condition ? 3 : 1);
    if (answer.condition) {
      add(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args) + 8 * answer.condition->position);
      add(BPF_JMP | BPF_JEQ | BPF_K, answer.condition->value, 1);
    }
    add(BPF_RET | BPF_K, answer.kills ? SECCOMP_RET_KILL_PROCESS : SECCOMP_RET_ERRNO | answer.errorNumber);
  }
  add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
  const sock_fprog loaded = {static_cast<unsigned short>(program.size()), program.data()};
  // An unprivileged process needs it to load filters; under confinement it has it already, and may not ask
  // again.
  prctl(PR_SET_NO_NEW_PRIVS, 1L, 0L, 0L, 0L);
  return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &loaded) == 0;
}

}  // namespace zelvo::testing
