#pragma once

#include <functional>
#include <string_view>
#include <sys/types.h>

#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"

namespace zelvo {

/// This process's ends of a child's pipes, all non-blocking. An empty one is not used.
struct ChildStreams {
  Descriptor input;
  /// The read end of the same pipe; empty if there is no input. Never read. Used to count the bytes that the
  /// child left unread. Keeps the pipe open, so that a write after the child has ended does not raise
  /// SIGPIPE.
  Descriptor unreadInput;
  Descriptor output;
  Descriptor errors;
};

/// Starts a child, sets its process ID and the ends of its pipes, and returns 0. Returns the error number if
/// no child was started. Called while the signals of `SignalCleanup` are blocked.
using ChildStart = std::function<int(ChildStreams& streams, pid_t& id)>;

/// As `runChildProcess`, for a child that `start` starts.
ChildResult runChild(const ChildStart& start, std::string_view input, const ChildBounds& bounds);

}  // namespace zelvo
