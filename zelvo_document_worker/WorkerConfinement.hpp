#pragma once

#include <string>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// Proves the sandbox, lowers the limits of processor time, file size and processes, and seals both; stops at
/// the first step that fails, and then says false.
bool confineForWork(EntitlementReader& entitlements, Limits& limits);

/// Takes the steps of a worker's confinement in a forked child. Returns which step failed, in a sentence for
/// a person; empty if that is not known. A worker may not print anything: this tells the operator of a host
/// why workers end with status 78.
///
/// The calling process must have one thread only. Throws only `std::bad_alloc`.
std::string explainConfinementFailure();

}  // namespace zelvo
