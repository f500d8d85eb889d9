#pragma once

#include <linux/filter.h>
#include <span>

namespace zelvo {

/// The error number with which the first filter answers every call that is not on its list. The kernel's own
/// numbers end far below, and 4095 is the largest that it returns: a process that gets this answer was
/// refused by this filter, not by the kernel and not by a filter of another program.
inline constexpr int refusedByUs = 4000;

/// The error number with which the second filter answers a read from descriptor -1, so that the process can
/// tell that it is in force. The first filter refuses that call like any other.
inline constexpr int markOfWorkingFilter = 4001;

// Both filters are constant arrays, generated from SystemCallPolicy.cpp when the project is built: loading
// one needs neither memory nor a descriptor. They kill the process at a call of another architecture.

/// In force until the limits are set.
std::span<const sock_filter> startingFilter();

/// In force while a document is processed.
std::span<const sock_filter> workingFilter();

/// Adds a filter to those that the process has, in all of its threads, for good. Returns false if the system
/// refuses. A filter of a parent can only pretend success: the caller must check that the filter is in force.
bool loadFilter(std::span<const sock_filter> filter);

}  // namespace zelvo
