#pragma once

#include <string_view>

namespace zelvo {

// Probes are system calls that cannot succeed and change nothing, with any privileges; their error number
// shows whether our filter refused them. Each key of `entitlement` represents an ability that the sandbox
// removes, and has probes for it:
//
//   appSandbox         opening files, becoming or starting programs, tracing, executable memory
//   networkClient      making sockets, connecting, sending
//   networkServer      binding, listening, accepting
//   inherit            using descriptors other than the standard ones, or receiving some
//   userSelectedFiles  creating, changing, removing and listing files
//   appleEvents        making other programs act: signals, messages

/// Whether our filter refuses every probe for the entitlement; true for a key that has no probes.
bool everyProbeIsRefusedByUs(std::string_view entitlementKey);

/// Whether any probe fails with our filter's error number. Called before our filter is loaded, to detect an
/// inherited filter that returns the same number.
bool anyProbeIsRefusedByUs();

}  // namespace zelvo
