#pragma once

#include <cstddef>
#include <string_view>

/// System calls that fail on demand, in programs that link `SystemCallFailure`. The linker leads every use of
/// the calls listed in CMakeLists.txt, in all static code of the program, to a replacement that fails or
/// passes the call on. A call that is not listed yet is added there and in SystemCallFailure.cpp.
namespace zelvo::testing {

/// While this lives, one use of the call fails: the first after `skipped` others. One at a time; the uses of
/// all threads and, after a fork, of the copy count.
class FailingCall {
 public:
  /// In place of an error number: a write succeeds, but takes one byte only.
  static constexpr int isShort = -1;

  /// `name` outlives this. `error` is the error number that the call reports.
  FailingCall(std::string_view name, int error, std::size_t skipped = 0);
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  ~FailingCall();

  /// Whether the call has been used often enough to fail.
  bool hasFailed() const;
};

/// To be compared before and after: a difference is a leak.
std::size_t openDescriptors();

/// Whether this process has a child that was not waited for. Waits for one that has ended.
bool leavesChild();

}  // namespace zelvo::testing
