#include <algorithm>
#include <cerrno>
#include <optional>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

#include "System/Confinement.hpp"
#include "System/EntitlementProbes.hpp"
#include "System/StandardStreams.hpp"
#include "System/SystemCallPolicy.hpp"

namespace zelvo {
namespace {

/// How the second filter answers a read from no descriptor, which the first refuses like everything else.
constexpr int answeredBySeal = 4001;

SystemCallPolicy& allowWorking(SystemCallPolicy& policy) {
  return policy.allowReadingFrom(STDIN_FILENO)
      .allowWritingTo(STDOUT_FILENO)
      .allowMemory()
      .allowWaking()
      .allowLeaving()
      .allowSanitizers();
}

/// From the start until the limits are set: nothing kills yet, so that a probe is answered.
std::optional<SystemCallFilter> filterForStarting() {
  auto policy = SystemCallPolicy::answeringElse(refusedByUs);
  return allowWorking(policy).allowLimits().allowFilters().compile();
}

/// While a document is worked on: whoever leaves the list is broken or taken over, and ends.
std::optional<SystemCallFilter> filterForWorking() {
  auto policy = SystemCallPolicy::killingElse();
  return allowWorking(policy).markWith(answeredBySeal).compile();
}

/// A descriptor that is missed here stays useless: no filter lets it be read or written.
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

// Both are read back: a filter of a parent can pretend that the call succeeded.
bool giveUpNewPrivileges() {
  return prctl(PR_SET_NO_NEW_PRIVS, 1L, 0L, 0L, 0L) == 0 && prctl(PR_GET_NO_NEW_PRIVS, 0L, 0L, 0L, 0L) == 1;
}

/// Documents in memory are neither dumped to disk nor read by other processes of the user.
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
  explicit SealedLimits(std::optional<SystemCallFilter> seal) : seal_(std::move(seal)) {}

  bool apply(const ResourceLimit& limit) override { return applyToThisProcess(limit); }

  bool seal() override {
    if (!seal_ || !seal_->load()) return false;
    return ::syscall(SYS_read, -1, nullptr, 0) == -1 && errno == answeredBySeal;
  }

 private:
  std::optional<SystemCallFilter> seal_;
};

/// Takes the steps in order and says which one failed, if any.
std::string_view confine(const std::optional<SystemCallFilter>& starting,
                         const std::optional<SystemCallFilter>& working) {
  if (!starting || !working) return "the system-call filters cannot be built on this system";
  if (anyProbeIsRefusedByUs())
    return "a filter that the process was started with answers in the name of ours";
  if (!ignoreSignalsOfWriting()) return "signals cannot be ignored";
  closeAllButStandardDescriptors();
  if (!giveUpNewPrivileges()) return "new privileges cannot be given up";
  if (!hideMemory()) return "the memory of the process cannot be hidden";
  if (!starting->load()) return "the system-call filter cannot be loaded";
  return {};
}

}  // namespace

Confinement enterConfinement() {
  const std::optional<SystemCallFilter> starting = filterForStarting();
  std::optional<SystemCallFilter> working = filterForWorking();
  const std::string_view failure = confine(starting, working);
  return {
      .entitlements = std::make_unique<ProbingEntitlementReader>(failure.empty()),
      .limits = std::make_unique<SealedLimits>(std::move(working)),
      .failure = failure,
  };
}

}  // namespace zelvo
