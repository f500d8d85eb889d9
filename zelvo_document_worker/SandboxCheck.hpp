#pragma once

#include "System/EntitlementReader.hpp"

namespace zelvo {

/// Whether the running process holds the sandbox and none of the entitlements that would weaken it. The keys
/// are asked for in a fixed order; the first wrong answer is the last question.
bool sandboxIsEnabled(EntitlementReader& entitlements);

}  // namespace zelvo
