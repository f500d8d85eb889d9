#pragma once

#include <string_view>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// True if the running process holds the sandbox and none of the entitlements that would weaken it. Reads the
/// keys in a fixed order and stops at the first wrong value.
bool sandboxIsEnabled(EntitlementReader& entitlements);

/// Checks the sandbox, lowers the limits of processor time, file size and processes, and seals both. Stops at
/// the first step that fails. Returns that step and its usual cause in sentences without a line feed, or an
/// empty text. The text is a string literal.
std::string_view applySandboxPolicy(EntitlementReader& entitlements, Limits& limits);

}  // namespace zelvo
