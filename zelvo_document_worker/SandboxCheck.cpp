#include "zelvo_document_worker/SandboxCheck.hpp"

#include <algorithm>
#include <array>

namespace zelvo {
namespace {

/// `inherit` is among them because a worker carries a sandbox of its own and does not live in its parent's.
constexpr std::array forbiddenEntitlements = {
    entitlement::networkClient,     entitlement::networkServer, entitlement::inherit,
    entitlement::userSelectedFiles, entitlement::appleEvents,
};

}  // namespace

bool sandboxIsEnabled(EntitlementReader& entitlements) {
  const auto isGranted = [&](std::string_view key) {
    return entitlements.value(key) == EntitlementValue::granted;
  };
  return isGranted(entitlement::appSandbox) &&
         std::none_of(forbiddenEntitlements.begin(), forbiddenEntitlements.end(), isGranted);
}

}  // namespace zelvo
