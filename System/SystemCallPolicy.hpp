#pragma once

#include <linux/filter.h>
#include <memory>
#include <optional>
#include <vector>

namespace zelvo {

/// A compiled policy. It can still be loaded when nothing that compiling needs is possible any more.
class SystemCallFilter {
 public:
  explicit SystemCallFilter(std::vector<sock_filter> instructions) : instructions_(std::move(instructions)) {}

  /// Puts the filter on top of those that the process has, for good. False when the system refuses; whether
  /// it only pretended to load is for the caller to find out.
  bool load() const;

 private:
  std::vector<sock_filter> instructions_;
};

/// Says which system calls a process may make, in bundles that are named after what they are for. A call that
/// is not allowed with its arguments is off the list; what happens then is how a policy begins. Calls of
/// another architecture kill the process under any policy.
class SystemCallPolicy {
 public:
  /// What is off the list fails with the error number.
  static SystemCallPolicy answeringElse(int errorNumber);

  /// What is off the list kills the process, all of its threads, with SIGSYS.
  static SystemCallPolicy killingElse();

  SystemCallPolicy& allowReadingFrom(int descriptor);
  SystemCallPolicy& allowWritingTo(int descriptor);

  /// Private anonymous memory that is never executable.
  SystemCallPolicy& allowMemory();

  /// Waking threads that wait for a lock, which the runtime does even when there are none.
  SystemCallPolicy& allowWaking();

  /// Ending the process.
  SystemCallPolicy& allowLeaving();

  /// Setting and asking the limits of the process itself, of no other.
  SystemCallPolicy& allowLimits();

  /// Loading further filters, which can only take more away.
  SystemCallPolicy& allowFilters();

  /// The one weakening: what the sanitizers' runtimes need. Allows nothing in any other build.
  SystemCallPolicy& allowSanitizers();

  /// Reading from no descriptor (-1) fails with the error number, by which the process can tell that this
  /// very filter is at work.
  SystemCallPolicy& markWith(int errorNumber);

  /// None when the policy cannot be had on this system. `std::bad_alloc` comes out, no other error.
  std::optional<SystemCallFilter> compile() const;

 private:
  explicit SystemCallPolicy(unsigned elseAction);

  SystemCallPolicy& note(int result);

  struct Release {
    void operator()(void* context) const;
  };
  std::unique_ptr<void, Release> context_;
  bool complete_ = true;
};

}  // namespace zelvo
