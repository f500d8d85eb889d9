#pragma once

#include <concepts>
#include <exception>
#include <string>

#include "Sandbox/Policy.hpp"
#include "System/Confinement.hpp"

namespace zelvo {

/// The exit statuses of a confined process whose work returned none.
struct ConfinedStatuses {
  int notConfined;  ///< a step of the confinement failed; the work did not begin
  int failed;       ///< the work threw an exception
};

/// Applies the policy to the process of `entitlements` and `limits`, then runs `work`. Returns the exit
/// status: that of `work`, or one of `statuses`.
template <std::invocable Work>
int runConfined(EntitlementReader& entitlements, Limits& limits, const ConfinedStatuses& statuses,
                const Work& work) noexcept {
  try {
    return applySandboxPolicy(entitlements, limits).empty() ? work() : statuses.notConfined;
  } catch (const std::exception&) {
    return statuses.failed;
  }
}

/// Confines the running process permanently, then runs `work` as above. The caller must end the process with
/// `_exit`: exit handlers would run under confinement.
template <std::invocable Work>
int runConfined(const ConfinedStatuses& statuses, const Work& work) noexcept {
  try {
    const Confinement confinement = enterConfinement();
    return runConfined(*confinement.entitlements, *confinement.limits, statuses, work);
  } catch (const std::exception&) {
    return statuses.notConfined;  // memory ran out before the work began
  }
}

/// Takes every step of the confinement in a forked child. Returns which step failed and its usual cause, in
/// sentences without a line feed; empty if none failed. A worker must not print anything; with this function
/// its host can tell the operator why workers end with status 78, or by SIGSYS at their start.
///
/// The calling process must have one thread only. Throws only `std::bad_alloc`.
std::string explainConfinementFailure();

}  // namespace zelvo
