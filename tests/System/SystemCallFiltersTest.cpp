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
    const sock_filter& instruction = filter[i];
    const auto jumpIf = [&](bool condition) { i += condition ? instruction.jt : instruction.jf; };
    switch (instruction.code) {
      case BPF_LD | BPF_W | BPF_ABS:
        std::memcpy(&loaded, reinterpret_cast<const std::byte*>(&call) + instruction.k, sizeof loaded);
        break;
      case BPF_ALU | BPF_AND | BPF_K:
        loaded &= instruction.k;
        break;
      case BPF_JMP | BPF_JA:
        i += instruction.k;
        break;
      case BPF_JMP | BPF_JEQ | BPF_K:
        jumpIf(loaded == instruction.k);
        break;
      case BPF_JMP | BPF_JGE | BPF_K:
        jumpIf(loaded >= instruction.k);
        break;
      case BPF_JMP | BPF_JGT | BPF_K:
        jumpIf(loaded > instruction.k);
        break;
      case BPF_RET | BPF_K:
        return instruction.k;
      default:
        ADD_FAILURE() << "instruction " << i << " has the unknown code " << instruction.code;
        return 0;
    }
  }
  ADD_FAILURE() << "the filter has no end";
  return 0;
}

std::uint32_t lowHalf(std::uint64_t argument) {
  return static_cast<std::uint32_t>(argument);
}

/// The list, in numbers and apart from the policy.
bool isOnTheList(const seccomp_data& call) {
  const auto& arguments = call.args;
  constexpr std::uint64_t hugePages = 0xfc04'0000;
  switch (call.nr) {
    case SYS_read:
      return lowHalf(arguments[0]) == 0;
    case SYS_write:
      return lowHalf(arguments[0]) == 1;
    case SYS_mmap:
      return arguments[2] <= 3 && (arguments[3] & ~hugePages) == 0x22;
    case SYS_mprotect:
      return arguments[2] <= 3;
    case SYS_mremap:
      return arguments[3] <= 1;
    case SYS_madvise:
      return lowHalf(arguments[2]) == 4 || lowHalf(arguments[2]) == 14;
    case SYS_futex:
      return lowHalf(arguments[1]) == 1 || lowHalf(arguments[1]) == 129;
    default:
      return call.nr == SYS_brk || call.nr == SYS_munmap || call.nr == SYS_exit_group;
  }
}

void expectVerdicts(const seccomp_data& call, bool isForeign) {
  const std::uint32_t argument = lowHalf(call.args[0]);
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

TEST(SystemCallFilters, GiveTheRightVerdictOnEveryCall) {
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
