#include <CoreFoundation/CoreFoundation.h>
#include <Security/SecTask.h>
#include <memory>
#include <type_traits>

#include "System/Confinement.hpp"

namespace zelvo {
namespace {

struct Release {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns an object of Core Foundation.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Release>;

class TaskEntitlementReader final : public EntitlementReader {
 public:
  explicit TaskEntitlementReader(bool isReady)
      : task_(isReady ? SecTaskCreateFromSelf(kCFAllocatorDefault) : nullptr) {}

  EntitlementValue value(std::string_view key) override {
    if (!task_) return EntitlementValue::absent;
    const Owned<CFStringRef> name(
        CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(key.data()),
                                static_cast<CFIndex>(key.size()), kCFStringEncodingUTF8, false));
    if (!name) return EntitlementValue::absent;
    const Owned<CFTypeRef> value(SecTaskCopyValueForEntitlement(task_.get(), name.get(), nullptr));
    if (!value) return EntitlementValue::absent;
    if (CFGetTypeID(value.get()) != CFBooleanGetTypeID()) return EntitlementValue::other;
    const bool isTrue = CFBooleanGetValue(static_cast<CFBooleanRef>(value.get()));
    return isTrue ? EntitlementValue::granted : EntitlementValue::denied;
  }

 private:
  Owned<SecTaskRef> task_;
};

class ProcessLimits final : public Limits {
 public:
  bool apply(const ResourceLimit& limit) override { return applyToThisProcess(limit); }

  /// Nothing to do: a hard limit cannot be raised again, and the App Sandbox cannot be left.
  bool seal() override { return true; }
};

}  // namespace

Confinement enterConfinement() {
  const std::string_view failure = prepareForConfinement();
  return {
      .entitlements = std::make_unique<TaskEntitlementReader>(failure.empty()),
      .limits = std::make_unique<ProcessLimits>(),
      .failure = failure,
  };
}

}  // namespace zelvo
