#pragma once

#include <string_view>

namespace zelvo {

/// The platform's keys of the entitlements that are checked.
namespace entitlement {
inline constexpr std::string_view appSandbox = "com.apple.security.app-sandbox";
inline constexpr std::string_view networkClient = "com.apple.security.network.client";
inline constexpr std::string_view networkServer = "com.apple.security.network.server";
inline constexpr std::string_view inherit = "com.apple.security.inherit";
inline constexpr std::string_view userSelectedFiles = "com.apple.security.files.user-selected.read-write";
inline constexpr std::string_view appleEvents = "com.apple.security.automation.apple-events";
}  // namespace entitlement

/// The platform's value of one entitlement of the running process.
enum class EntitlementValue {
  absent,
  denied,   ///< the boolean false
  granted,  ///< the boolean true
  other,    ///< a value of another type; does not grant anything
};

/// The interface between the sandbox check and the platform.
class EntitlementReader {
 public:
  EntitlementReader() = default;
  EntitlementReader(const EntitlementReader&) = delete;
  EntitlementReader& operator=(const EntitlementReader&) = delete;
  virtual ~EntitlementReader() = default;

  virtual EntitlementValue value(std::string_view key) = 0;
};

}  // namespace zelvo
