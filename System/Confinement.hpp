#pragma once

#include <memory>
#include <string_view>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// What a process holds after it has confined itself as far as it could.
struct Confinement {
  /// Never null. Answers from what the operating system refuses at the moment of asking, and says that the
  /// sandbox is absent if confining failed, so that the check before the work needs no second condition.
  std::unique_ptr<EntitlementReader> entitlements;

  /// Never null. Its `seal` is the last step of the confinement: from then on the process may read standard
  /// input, write standard output, use memory and end; any other system call kills it.
  std::unique_ptr<Limits> limits;

  /// Which step failed and what usually causes it, in sentences for a person; empty if none failed. The text
  /// lives as long as the program.
  std::string_view failure;
};

/// Confines the running process for good. Afterwards standard input, standard output and standard error are
/// its only descriptors, and every system call that opens, connects, starts, traces or signals anything is
/// refused. Whatever a library must ask the system once has to be asked before. Throws only `std::bad_alloc`.
///
/// On macOS the confinement is the App Sandbox, which the system has built around the process before it
/// started.
Confinement enterConfinement();

/// The first steps of `enterConfinement`, the same on every platform: ignores the signals of failed writes,
/// and lets the runtime ask the system now for what it could not ask later. Returns the failure, as above.
std::string_view prepareForConfinement();

}  // namespace zelvo
