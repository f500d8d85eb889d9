#include "System/HashSalt.hpp"

#include <chrono>
#include <unistd.h>

#if defined(__APPLE__)
#include <sys/random.h>
#endif

namespace zelvo {

std::uint64_t hashSalt() {
  static const std::uint64_t salt = [] {
    std::uint64_t drawn = 0;
    if (getentropy(&drawn, sizeof drawn) != 0) {
      // Kernels without the call: harder to guess than a constant.
      drawn = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    return drawn | 1U;
  }();
  return salt;
}

}  // namespace zelvo
