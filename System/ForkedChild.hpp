#pragma once

#include <cstddef>
#include <functional>

#include "System/ChildProcess.hpp"

namespace zelvo {

/// Runs `work` in a forked copy of this process, whose standard output comes back as the result's output, and
/// ends the copy at once with the status that `work` gives. `work` must not throw. More than `outputBytes`
/// end it. What it reads in memory is what stood there at the fork; what it writes stays its own.
///
/// The calling process must have one thread only, and leave its children to be waited for. There is no time
/// limit: the work must see to its own. `std::bad_alloc` comes out, no other error, and leaves no child
/// behind.
ChildResult runForkedChild(const std::function<int()>& work, std::size_t outputBytes);

}  // namespace zelvo
