#pragma once

#include <string_view>

namespace zelvo {

// Probes are system calls that cannot succeed and change nothing, whatever the process may do; they only show
// who answers. Each key of `entitlement` stands for something that a process without the sandbox could do,
// and has probes for it:
//
//   appSandbox         opening files, becoming or starting programs, tracing, executable memory
//   networkClient      making sockets, connecting, sending
//   networkServer      binding, listening, accepting
//   inherit            using descriptors other than the standard ones, or receiving some
//   userSelectedFiles  creating, changing, removing and listing files
//   appleEvents        making other programs act: signals, messages

/// Whether our filter refuses every probe for the entitlement; true for a key that has no probes.
bool everyProbeIsRefusedByUs(std::string_view entitlementKey);

/// Whether a probe for any entitlement gets our filter's answer. Called before our filter is loaded, it
/// detects an inherited filter that imitates it.
bool anyProbeIsRefusedByUs();

}  // namespace zelvo
