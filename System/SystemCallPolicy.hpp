#pragma once

#include <linux/filter.h>
#include <vector>

namespace zelvo {

// The source of both system-call filters. libseccomp compiles it when the project is built; programs hold the
// result as constant arrays (SystemCallFilters.hpp) and do not link this file. Both functions throw
// `std::system_error` if libseccomp cannot compile the policy.

/// The first filter: a call that is not on the list fails with the error number `refusedByUs`.
std::vector<sock_filter> compileStartingFilter();

/// The second filter: a call that is not on the list kills the process, all of its threads, with SIGSYS. The
/// list lacks the calls that set limits or load filters.
std::vector<sock_filter> compileWorkingFilter();

}  // namespace zelvo
