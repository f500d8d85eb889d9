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

/// A system call that somebody else's filter answers in the kernel's place.
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

/// Loads a filter that gives these answers and allows everything else; written by hand, so that it shares
/// nothing with what it is to test.
inline bool loadForeignFilter(const std::vector<ForeignAnswer>& answers) {
  constexpr auto load = static_cast<std::uint16_t>(BPF_LD | BPF_W | BPF_ABS);
  constexpr auto jumpIfEqual = static_cast<std::uint16_t>(BPF_JMP | BPF_JEQ | BPF_K);
  constexpr auto end = static_cast<std::uint16_t>(BPF_RET | BPF_K);
  std::vector<sock_filter> program;
  for (const ForeignAnswer& answer : answers) {
    const auto toNextAnswer = static_cast<std::uint8_t>(answer.condition ? 3 : 1);
    program.push_back({load, 0, 0, offsetof(seccomp_data, nr)});
    program.push_back({jumpIfEqual, 0, toNextAnswer, static_cast<std::uint32_t>(answer.systemCall)});
    if (answer.condition) {
      const std::size_t argument =
          offsetof(seccomp_data, args) + sizeof(std::uint64_t) * answer.condition->position;
      program.push_back({load, 0, 0, static_cast<std::uint32_t>(argument)});
      program.push_back({jumpIfEqual, 0, 1, answer.condition->value});
    }
    program.push_back(
        {end, 0, 0, answer.kills ? SECCOMP_RET_KILL_PROCESS : SECCOMP_RET_ERRNO | answer.errorNumber});
  }
  program.push_back({end, 0, 0, SECCOMP_RET_ALLOW});
  const sock_fprog loaded = {static_cast<unsigned short>(program.size()), program.data()};
  // An unprivileged process needs it to load filters; under confinement it has it already, and may not ask
  // again.
  prctl(PR_SET_NO_NEW_PRIVS, 1L, 0L, 0L, 0L);
  return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &loaded) == 0;
}

}  // namespace zelvo::testing
