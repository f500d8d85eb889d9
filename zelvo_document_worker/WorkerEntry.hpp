#pragma once

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"

namespace zelvo {

/// With what status the worker ends.
namespace exitStatus {
inline constexpr int answered = 0;  ///< a response was written: a result or an error
inline constexpr int noResponse =
    65;  ///< nothing was written: unusable request, unwritable response, no memory
inline constexpr int notConfined = 78;  ///< nothing was read: the sandbox or a limit is not in place
}  // namespace exitStatus

/// The life of a worker, from the sandbox check to the one response. Gives the exit status; throws nothing.
int runWorker(EntitlementReader& entitlements, Limits& limits, Input& input, Output& output) noexcept;

}  // namespace zelvo
