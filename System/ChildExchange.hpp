#pragma once

#include <functional>
#include <string_view>
#include <sys/types.h>

#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"

namespace zelvo {

/// The starting process's ends of a child's pipes. They do not block. An empty one is not used.
struct ChildStreams {
  Descriptor input;
  /// The read end of the same pipe; empty if there is no input. Never read. It counts what the child left
  /// unread, and it keeps the pipe open, so that a write after the child has ended does not raise SIGPIPE.
  Descriptor unreadInput;
  Descriptor output;
  Descriptor errors;
};

/// Starts a child, gives its number and the ends of its pipes, and returns 0, or starts none and returns the
/// error number. Runs while the signals of `SignalCleanup` are held back.
using ChildStart = std::function<int(ChildStreams& streams, pid_t& id)>;

/// What `runChildProcess` does with a child that is started like this.
ChildResult runChild(const ChildStart& start, std::string_view input, const ChildBounds& bounds);

}  // namespace zelvo
