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

/// Lowers what this process may use, for good.
class Limits {
 public:
  Limits() = default;
  Limits(const Limits&) = delete;
  Limits& operator=(const Limits&) = delete;
  virtual ~Limits() = default;

  /// False when the operating system refuses.
  virtual bool apply(const ResourceLimit& limit) = 0;

  /// Gives up the right to change limits or filters again; called once, after the last limit and before the
  /// first byte is read. False when the operating system refuses.
  virtual bool seal() = 0;
};

/// Sets a limit of the running process and reads it back. False when the operating system refuses, and when
/// it only pretended to set it.
bool applyToThisProcess(const ResourceLimit& limit);

}  // namespace zelvo
