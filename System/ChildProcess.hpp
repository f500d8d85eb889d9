#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelvo {

struct ChildCommand {
  std::string program;                 ///< a path; it is not searched for
  std::vector<std::string> arguments;  ///< what follows the program's own name
};

struct ChildBounds {
  std::size_t outputBytes;              ///< on standard output; the child is killed if it writes more
  std::chrono::milliseconds wallClock;  ///< from starting it until it has ended
};

enum class ChildOutcome {
  failed,          ///< it was not started, or a system call failed; `code` is the error number
  exited,          ///< normally; `code` is the exit status
  killed,          ///< by a signal from elsewhere; `code` is the signal
  timedOut,        ///< killed by this process, `code` is 0
  outputTooLarge,  ///< killed by this process, `code` is 0
};

struct ChildResult {
  ChildOutcome outcome;
  int code;
  std::string output;       ///< standard output, up to its bound
  std::string errorOutput;  ///< the first 64 KiB of standard error
  std::chrono::microseconds cpuTime;
  /// The largest resident set. An upper bound: Linux includes the memory of the starting process at the
  /// start.
  std::uint64_t peakMemoryBytes;
  /// The bytes of its input that the child has read; nullopt if it has no input of its own.
  std::optional<std::uint64_t> inputBytesRead;
};

/// Runs a program to its end: with the input on its standard input, an empty environment, no other descriptor
/// and no signal blocked or ignored. Input is written while both outputs are read, so neither side waits for
/// the other; a child that does not read its input is not an error. If a bound is exceeded, the child is
/// killed.
///
/// May be called from several threads at once. SIGCHLD must not be ignored: the child could not be waited
/// for, and the outcome would be `failed`. Throws only `std::bad_alloc`, and leaves no child.
ChildResult runChildProcess(const ChildCommand& command, std::string_view input, const ChildBounds& bounds);

}  // namespace zelvo
