#pragma once

#include <string>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// Checks the sandbox, lowers the limits of processor time, file size and processes, and seals both; stops at
/// the first step that fails, and then returns false.
bool confineForWork(EntitlementReader& entitlements, Limits& limits);

/// Takes every step of a worker's confinement in a forked child. Returns which step failed and what usually
/// causes it, in sentences for a person, without a line feed; empty if none failed. A worker may not print
/// anything: this tells the operator of a host why workers end with status 78, or by SIGSYS at their start.
///
/// The calling process must have one thread only. Throws only `std::bad_alloc`.
std::string explainConfinementFailure();

}  // namespace zelvo
