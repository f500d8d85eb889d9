// Owns the two system-call filters as programs: their verdict on every call, without loading them.

#include <cstddef>
#include <cstring>
#include <linux/audit.h>
#include <linux/seccomp.h>
#include <span>
#include <sys/syscall.h>

#include <gtest/gtest.h>

#include "System/SystemCallFilters.hpp"

// A sanitizer's runtime needs more than the list below.
#if !defined(ZELVO_SANITIZE)

namespace zelvo {
namespace {

#if defined(__x86_64__)
constexpr std::uint32_t thisArchitecture = AUDIT_ARCH_X86_64;
#else
constexpr std::uint32_t thisArchitecture = AUDIT_ARCH_AARCH64;
#endif

/// Runs a filter as the kernel does.
std::uint32_t verdict(std::span<const sock_filter> filter, const seccomp_data& call) {
  std::uint32_t loaded = 0;
  for (std::size_t i = 0; i < filter.size(); ++i) {
    const auto& [code, toSkipIfTrue, toSkipIfFalse, k] = filter[i];
    if (code == (BPF_RET | BPF_K)) return k;
    if (code == (BPF_LD | BPF_W | BPF_ABS)) {
      std::memcpy(&loaded, reinterpret_cast<const std::byte*>(&call) + k, sizeof loaded);
    } else if (code == (BPF_ALU | BPF_AND | BPF_K)) {
      loaded &= k;
    } else if (code == (BPF_JMP | BPF_JA)) {
      i += k;
    } else {
      const bool isEqual = code == (BPF_JMP | BPF_JEQ | BPF_K);
      const bool isAtLeast = code == (BPF_JMP | BPF_JGE | BPF_K);
      if (!isEqual && !isAtLeast && code != (BPF_JMP | BPF_JGT | BPF_K)) break;
      i += (isEqual ? loaded == k : isAtLeast ? loaded >= k : loaded > k) ? toSkipIfTrue : toSkipIfFalse;
    }
  }
  ADD_FAILURE() << "the filter has no end or an unknown instruction";
  return 0;
}

/// The list, in numbers and apart from the policy. The kernel ignores the upper half of some arguments.
bool isOnTheList(const seccomp_data& call) {
  const auto& arguments = call.args;
  const auto low = [&](unsigned position) { return static_cast<std::uint32_t>(arguments[position]); };
  constexpr std::uint64_t hugePages = 0xfc04'0000;
  const int number = call.nr;
  return number == SYS_brk || number == SYS_munmap || number == SYS_exit_group ||
         (number == SYS_read && low(0) == 0) || (number == SYS_write && low(0) == 1) ||
         (number == SYS_mmap && arguments[2] <= 3 && (arguments[3] & ~hugePages) == 0x22) ||
         (number == SYS_mprotect && arguments[2] <= 3) || (number == SYS_mremap && arguments[3] <= 1) ||
         (number == SYS_madvise && (low(2) == 4 || low(2) == 14)) ||
         (number == SYS_futex && (low(1) == 1 || low(1) == 129));
}

void expectVerdicts(const seccomp_data& call, bool isForeign) {
  const auto argument = static_cast<std::uint32_t>(call.args[0]);
  std::uint32_t starting = SECCOMP_RET_ERRNO | 4000;
  std::uint32_t working = SECCOMP_RET_KILL_PROCESS;
  if (isForeign) {
    starting = SECCOMP_RET_KILL_PROCESS;
  } else if (isOnTheList(call)) {
    starting = working = SECCOMP_RET_ALLOW;
  } else if ((call.nr == SYS_prlimit64 && argument == 0) || (call.nr == SYS_seccomp && argument == 1)) {
    starting = SECCOMP_RET_ALLOW;
  } else if (call.nr == SYS_read && argument == 0xffff'ffff) {
    working = SECCOMP_RET_ERRNO | 4001;
  }
  ASSERT_EQ(verdict(startingFilter(), call), starting);
  ASSERT_EQ(verdict(workingFilter(), call), working);
}

TEST(SystemCallFilters, JudgeEveryCallRightly) {
  // Values that the list names, their neighbours, single bits beside them, and bits of the upper half. The
  // formatter would give each a line.
  // clang-format off
  constexpr std::uint64_t values[] = {
      0, 1, 2, 3, 4, 5, 8, 12, 14, 15, 0x21, 0x22, 0x23, 0x32, 128, 129, 137, 0x1'0000, 0x1'0001, 0x4'0022,
      0x5404'0022, 0xfc00'0022, 0x200'0022, 0x8'0022, 0x100'0003, 0x8000'0000, 0xffff'ffff, 0x1'0000'0000,
      0x1'0000'0001, 0x1'0000'0022, 0x100'0000'000e, 0x8000'0000'0000'0000, 0xffff'ffff'ffff'ffff};
  // clang-format on
  constexpr int lastNumber = 512;  // the kernel's own end below
  constexpr unsigned comparedArguments = 4;
  for (int number = -1; number <= lastNumber; ++number) {
    for (unsigned first = 0; first < comparedArguments; ++first) {
      for (unsigned second = first + 1; second < comparedArguments; ++second) {
        for (const std::uint64_t one : values) {
          for (const std::uint64_t other : values) {
            seccomp_data call = {.nr = number, .arch = thisArchitecture};
            call.args[first] = one;
            call.args[second] = other;
            ASSERT_NO_FATAL_FAILURE(expectVerdicts(call, false))
                << number << ": argument " << first << " is " << one << ", " << second << " is " << other;
          }
        }
      }
    }
    for (const unsigned architecture : {AUDIT_ARCH_I386 + 0U, AUDIT_ARCH_ARM + 0U, 0U}) {
      ASSERT_NO_FATAL_FAILURE(expectVerdicts({.nr = number, .arch = architecture}, true)) << number;
    }
#if defined(__x86_64__)
    if (number < 0) continue;  // no number of x32
    constexpr int x32 = 0x4000'0000;
    ASSERT_NO_FATAL_FAILURE(expectVerdicts({.nr = number | x32, .arch = thisArchitecture}, true)) << number;
#endif
  }
}

}  // namespace
}  // namespace zelvo

#endif
