#include "System/Confinement.hpp"

#include "System/StandardStreams.hpp"

#if defined(ZELVO_SANITIZE)
#include <sanitizer/common_interface_defs.h>
#endif

namespace zelvo {
namespace {

/// The first exception of a process makes the unwinder look for its tables, which needs system calls that
/// confinement forbids.
void warmUpUnwinder() {
  struct FirstThrow {};
  try {
    throw FirstThrow();
  } catch (const FirstThrow&) {
    return;
  }
}

}  // namespace

std::string_view prepareForConfinement() {
  // First, because under an inherited file-size limit a write could end the process.
  if (!ignoreSignalsOfWriting()) {
    return "SIGPIPE and SIGXFSZ cannot be ignored. Usually a seccomp filter that the process inherited "
           "forbids rt_sigaction.";
  }
  warmUpUnwinder();
#if defined(ZELVO_SANITIZE)
  // Lets the sanitizers' runtimes make the system calls that they will need later.
  __sanitizer_sandbox_arguments arguments = {};
  __sanitizer_sandbox_on_notify(&arguments);
#endif
  return {};
}

}  // namespace zelvo
