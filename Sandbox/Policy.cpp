#include "Sandbox/Policy.hpp"

#include <algorithm>
#include <array>

namespace zelvo {
namespace {

/// Includes `inherit`, because the process has a sandbox of its own and does not use its parent's.
constexpr std::array forbiddenEntitlements = {
    entitlement::networkClient,     entitlement::networkServer, entitlement::inherit,
    entitlement::userSelectedFiles, entitlement::appleEvents,
};

/// The hardest workbook within the readers' limits takes a few seconds.
constexpr ResourceLimit cpuLimit = {.resource = Resource::cpuSeconds, .soft = 45, .hard = 45};
constexpr ResourceLimit fileLimit = {.resource = Resource::fileBytes, .soft = 0, .hard = 0};
constexpr ResourceLimit processLimit = {.resource = Resource::processes, .soft = 0, .hard = 0};

}  // namespace

bool sandboxIsEnabled(EntitlementReader& entitlements) {
  const auto isGranted = [&](std::string_view key) {
    return entitlements.value(key) == EntitlementValue::granted;
  };
  return isGranted(entitlement::appSandbox) &&
         std::none_of(forbiddenEntitlements.begin(), forbiddenEntitlements.end(), isGranted);
}

std::string_view applySandboxPolicy(EntitlementReader& entitlements, Limits& limits) {
  if (!sandboxIsEnabled(entitlements)) {
    return "The sandbox is not in force although it was set up. Usually a seccomp filter that the process "
           "inherited answers seccomp in place of the kernel, or, on macOS, the program was not signed "
           "with its entitlements.";
  }
  if (!limits.apply(cpuLimit)) {
    return "The limit of 45 seconds of processor time cannot be set. Usually the process was started with "
           "a lower hard limit (ulimit -t, LimitCPU= of systemd, a batch system), which must be at least "
           "45 seconds.";
  }
  if (!limits.apply(fileLimit)) {
    return "The limit of 0 bytes for files cannot be set. Usually a seccomp filter that the process "
           "inherited answers prlimit64.";
  }
  if (!limits.apply(processLimit)) {
    return "The limit of 0 further processes cannot be set. Usually a seccomp filter that the process "
           "inherited answers prlimit64.";
  }
  if (!limits.seal()) {
    return "The second seccomp filter cannot be loaded or is not in force. Usually a seccomp filter that "
           "the process inherited answers seccomp in place of the kernel.";
  }
  return {};
}

}  // namespace zelvo
