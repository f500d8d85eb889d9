#pragma once

#include <linux/filter.h>
#include <span>

namespace zelvo {

/// The error number that the first filter returns for every call that is not on its list. The kernel's own
/// numbers are far lower, and 4095 is the largest that a filter can return: this number shows that this
/// filter refused the call, not the kernel and not a filter of another program.
inline constexpr int refusedByUs = 4000;

/// The error number that the second filter returns for a read from descriptor -1, so that the process can
/// check that it is in force. The first filter refuses that call like any other.
inline constexpr int markOfWorkingFilter = 4001;

// Both filters are constant arrays, generated from SystemCallPolicy.cpp when the project is built: loading
// one needs neither memory nor a descriptor. They kill the process at a call of another architecture.

/// In force until the limits are set.
std::span<const sock_filter> startingFilter();

/// In force while a document is processed.
std::span<const sock_filter> workingFilter();

/// Adds a filter to those of the process, in all of its threads, permanently. Returns false if the system
/// refuses. An inherited filter can fake success: the caller must check that the filter is in force.
bool loadFilter(std::span<const sock_filter> filter);

}  // namespace zelvo
