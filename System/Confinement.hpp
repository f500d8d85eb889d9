#pragma once

#include <memory>
#include <string_view>

#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"

namespace zelvo {

/// What a process holds after it has confined itself as far as it could.
struct Confinement {
  /// Never null. Answers from what the operating system refuses at the moment of asking, and says that the
  /// sandbox is absent when confining failed, so that whoever asks before working needs no second check.
  std::unique_ptr<EntitlementReader> entitlements;

  /// Never null. Its `seal` is the last step into the confinement: from then on the process may read standard
  /// input, write standard output, use memory and end, and dies on anything else.
  std::unique_ptr<Limits> limits;

  /// What stood in the way, for a person; empty when nothing did. The text lives as long as the program.
  std::string_view failure;
};

/// Confines the running process for good. Afterwards standard input, standard output and standard error are
/// its only descriptors, and every system call that opens, connects, starts, traces or signals anything is
/// refused. Whatever a library must ask the system once has to be asked before. `std::bad_alloc` comes out,
/// no other error.
///
/// On macOS the confinement is the App Sandbox, which the system has built around the process before it
/// started.
Confinement enterConfinement();

/// Throws and catches once: the first exception of a process looks for the tables of its unwinder, which is
/// not possible under confinement.
void warmUpUnwinder();

}  // namespace zelvo
