#pragma once

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {

/// The life of a worker, from the sandbox check to the one response. Gives one of `exitStatus`; throws
/// nothing.
int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output) noexcept;

}  // namespace zelvo
