#pragma once

#include <cstdint>

namespace zelvo {

enum class Resource {
  cpuSeconds,
  fileBytes,
  processes,
};

struct ResourceLimit {
  Resource resource;
  std::uint64_t soft;
  std::uint64_t hard;
};

/// Lowers the limits of this process permanently.
class Limits {
 public:
  Limits() = default;
  Limits(const Limits&) = delete;
  Limits& operator=(const Limits&) = delete;
  virtual ~Limits() = default;

  /// Returns false if the operating system refuses.
  virtual bool apply(const ResourceLimit& limit) = 0;

  /// Prevents further changes of limits and filters. Called once, after the last limit and before the first
  /// byte is read. Returns false if the operating system refuses.
  virtual bool seal() = 0;
};

/// Sets a limit of the running process and reads it back. Returns false if the operating system refuses, or
/// if the limit that is read back differs.
bool applyToThisProcess(const ResourceLimit& limit);

}  // namespace zelvo
