#pragma once

#include <string_view>

namespace zelvo {

/// What the platform says of one entitlement of the running process.
enum class EntitlementValue {
  absent,
  denied,   ///< the boolean false
  granted,  ///< the boolean true
  other,    ///< a value of another type, which grants nothing
};

/// The one seam between the sandbox check and the platform.
class EntitlementReader {
 public:
  EntitlementReader() = default;
  EntitlementReader(const EntitlementReader&) = delete;
  EntitlementReader& operator=(const EntitlementReader&) = delete;
  virtual ~EntitlementReader() = default;

  virtual EntitlementValue value(std::string_view key) = 0;
};

}  // namespace zelvo
