#pragma once

#include <string_view>

namespace zelvo {

/// The error number by which our own filter refuses a system call. The kernel's own numbers end far below,
/// and 4095 is the largest that it hands on: whoever gets this answer has been refused by us, not by the
/// kernel and not by a filter that somebody else loaded.
inline constexpr int refusedByUs = 4000;

/// Probes are system calls that cannot succeed and change nothing, whatever the process may do; they ask only
/// who answers. Every entitlement that matters here has a few, each for something that its holder could do.

/// True when every probe for the entitlement is refused by our filter; also for a key that has no probes.
bool everyProbeIsRefusedByUs(std::string_view entitlementKey);

/// True when a probe for any entitlement is. Before our filter is loaded this unmasks one that imitates it.
bool anyProbeIsRefusedByUs();

}  // namespace zelvo
