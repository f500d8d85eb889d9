#include "System/SystemCallFilters.hpp"

#include <iterator>
#include <linux/seccomp.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zelvo {
namespace {

// Defines the arrays `startingInstructions` and `workingInstructions`.
#include "System/GeneratedSystemCallFilters.inc"

static_assert(std::size(startingInstructions) <= BPF_MAXINSNS &&
              std::size(workingInstructions) <= BPF_MAXINSNS);

}  // namespace

std::span<const sock_filter> startingFilter() {
  return startingInstructions;
}

std::span<const sock_filter> workingFilter() {
  return workingInstructions;
}

bool loadFilter(std::span<const sock_filter> filter) {
  // The kernel copies the program and never writes to it.
  const sock_fprog program = {static_cast<unsigned short>(filter.size()),
                              const_cast<sock_filter*>(filter.data())};
  return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
}

}  // namespace zelvo
