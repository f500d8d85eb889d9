#pragma once

#include <chrono>
#include <functional>
#include <string>

#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// Runs `work` in a forked child that has confined itself as a worker does, within a worker's time, and
/// returns the bytes that `work` returned. For untrusted input that no worker operation takes: the child
/// parses it, the parent only carries bytes. An exception of `work` other than `std::bad_alloc` is a refusal.
/// The errors of `work` have the status `refused` or `usage`.
///
/// `work` uses what is in memory already; it can neither open nor start anything.
Result<std::string> runConfinedChild(const std::function<Result<std::string>()>& work);

/// Sets the wall-clock time of the children that are started from now on.
void setConfinedChildTimeout(std::chrono::milliseconds timeout);

/// The error for bytes of such a child that are not what its work returns.
CommandError unreadableResult(const std::string& detail);

}  // namespace zelvo
