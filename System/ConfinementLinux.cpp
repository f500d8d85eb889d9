#include <algorithm>
#include <cerrno>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "System/Confinement.hpp"
#include "System/SandboxProbes.hpp"
#include "System/SystemCallFilters.hpp"

namespace zelvo {
namespace {

/// A descriptor that is missed here cannot be used: the filters refuse to read or write it.
void closeAllButStandardDescriptors() {
  constexpr unsigned first = STDERR_FILENO + 1;
  if (::syscall(SYS_close_range, first, ~0U, 0U) == 0) return;
  // Kernels before 5.9. None lets a process have descriptors above this number unless its administrator
  // raised it.
  constexpr rlim_t kernelsDefaultCeiling = 1 << 20;
  rlimit descriptors = {};
  if (getrlimit(RLIMIT_NOFILE, &descriptors) != 0) descriptors.rlim_max = kernelsDefaultCeiling;
  const auto end = static_cast<int>(std::min(descriptors.rlim_max, kernelsDefaultCeiling));
  for (int descriptor = first; descriptor < end; ++descriptor) {
    close(descriptor);
  }
}

// Both are read back: an inherited filter can fake success.
bool setNoNewPrivileges() {
  return prctl(PR_SET_NO_NEW_PRIVS, 1L, 0L, 0L, 0L) == 0 && prctl(PR_GET_NO_NEW_PRIVS, 0L, 0L, 0L, 0L) == 1;
}

/// Prevents that documents in memory are dumped to disk or read by other processes of the user.
bool hideMemory() {
  return prctl(PR_SET_DUMPABLE, 0L, 0L, 0L, 0L) == 0 && prctl(PR_GET_DUMPABLE, 0L, 0L, 0L, 0L) == 0;
}

class ProbingEntitlementReader final : public EntitlementReader {
 public:
  explicit ProbingEntitlementReader(bool isConfined) : isConfined_(isConfined) {}

  EntitlementValue value(std::string_view key) override {
    const bool isRefused = everyProbeIsRefusedByUs(key);
    const bool isHeld = key == entitlement::appSandbox ? isConfined_ && isRefused : !isRefused;
    return isHeld ? EntitlementValue::granted : EntitlementValue::absent;
  }

 private:
  bool isConfined_;
};

class SealedLimits final : public Limits {
 public:
  bool apply(const ResourceLimit& limit) override { return applyToThisProcess(limit); }

  bool seal() override {
    return loadFilter(workingFilter()) && ::syscall(SYS_read, -1, nullptr, 0) == -1 &&
           errno == markOfWorkingFilter;
  }
};

/// Takes the steps in order and returns which one failed, if any.
std::string_view confine() {
  const std::string_view failure = prepareForConfinement();
  if (!failure.empty()) return failure;
  closeAllButStandardDescriptors();
  if (!setNoNewPrivileges()) {
    return "PR_SET_NO_NEW_PRIVS cannot be set. Usually a seccomp filter that the process inherited answers "
           "prctl.";
  }
  if (!hideMemory()) {
    return "PR_SET_DUMPABLE cannot be cleared. Usually a seccomp filter that the process inherited answers "
           "prctl.";
  }
  if (anyProbeIsRefusedByUs()) {
    return "A seccomp filter that the process inherited returns the error number that only its own filter "
           "may return.";
  }
  if (!loadFilter(startingFilter())) {
    return "The first seccomp filter cannot be loaded. Usually a seccomp filter of the service manager or "
           "the container forbids seccomp, or the kernel was built without CONFIG_SECCOMP_FILTER.";
  }
  return {};
}

}  // namespace

Confinement enterConfinement() {
  const std::string_view failure = confine();
  return {
      .entitlements = std::make_unique<ProbingEntitlementReader>(failure.empty()),
      .limits = std::make_unique<SealedLimits>(),
      .failure = failure,
  };
}

}  // namespace zelvo
