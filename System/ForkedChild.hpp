#pragma once

#include <chrono>
#include <cstddef>
#include <functional>

#include "System/ChildProcess.hpp"

namespace zelvo {

/// Runs `work` in a forked copy of this process and ends the copy at once with the status that `work`
/// returns. The copy's standard input is empty; its standard output is the result's output; its standard
/// error is this process's. `work` must not throw. The copy is killed if it writes more than `outputBytes`,
/// or has not ended after `wallClock`. It has its own copy of the memory.
///
/// The calling process must have one thread only, its three standard streams open, and must not ignore
/// SIGCHLD. Throws only `std::bad_alloc`, and leaves no child.
ChildResult runForkedChild(const std::function<int()>& work, std::size_t outputBytes,
                           std::chrono::milliseconds wallClock = std::chrono::seconds(180));

}  // namespace zelvo
