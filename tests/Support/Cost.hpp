#pragma once

#include <cstddef>
#include <ctime>
#include <fstream>
#include <malloc.h>
#include <stdexcept>
#include <string>

namespace zelvo::testing {

/// What a call took of this process.
struct Cost {
  double cpuSeconds;
  std::size_t peakBytes;  ///< resident at most, beyond what was resident before
};

/// A line of /proc/self/status that counts kilobytes, in bytes.
inline std::size_t statusBytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    std::size_t kilobytes = 0;
    if (word == key && status >> kilobytes) return kilobytes * 1024;
  }
  throw std::runtime_error("no " + key);
}

/// Runs `act` and measures it. All kinds of allocation count, as they would against the memory of a worker.
///
/// Sanitizers keep freed memory, so that in their builds the peak says nothing and is 0.
template <typename Act>
Cost costOf(const Act& act) {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";  // the peak is now what is resident
  [[maybe_unused]] const std::size_t before = statusBytes("VmRSS:");
  const std::clock_t start = std::clock();
  act();
  const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
#ifdef ZELVO_SANITIZE
  return {seconds, 0};
#else
  const std::size_t peak = statusBytes("VmHWM:");
  return {seconds, peak > before ? peak - before : 0};
#endif
}

}  // namespace zelvo::testing
