#pragma once

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// Proves the sandbox, lowers the limits of processor time, file size and processes, and seals both; stops at
/// the first step that fails, and then says false.
bool confineForWork(EntitlementReader& entitlements, Limits& limits);

}  // namespace zelvo
