#pragma once

#include <memory>
#include <string_view>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// The state of a process after `enterConfinement`.
struct Confinement {
  /// Never null. Each value is determined by probing what the operating system refuses. If confining failed,
  /// the sandbox is reported as absent, so that the check before the work needs no second condition.
  std::unique_ptr<EntitlementReader> entitlements;

  /// Never null. Its `seal` is the last step of the confinement: from then on the process may read standard
  /// input, write standard output, use memory and end; any other system call kills it.
  std::unique_ptr<Limits> limits;

  /// The step that failed and its usual cause, in sentences; empty if none failed. A string literal.
  std::string_view failure;
};

/// Confines the running process permanently. Afterwards standard input, standard output and standard error
/// are its only descriptors, and every system call that opens, connects, starts, traces or signals anything
/// is refused. System calls that a library makes once must be made before. Throws only `std::bad_alloc`.
///
/// On macOS the confinement is the App Sandbox, which the system has built around the process before it
/// started.
Confinement enterConfinement();

/// The first steps of `enterConfinement`, the same on every platform: ignores the signals of failed writes,
/// and lets the runtime make the system calls that confinement would refuse. Returns the failure, as above.
std::string_view prepareForConfinement();

}  // namespace zelvo
