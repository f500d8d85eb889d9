#pragma once

/// The exit statuses of a worker.
namespace zelvo::exitStatus {

inline constexpr int answered = 0;  ///< a response was written: a result or an error
/// Nothing was written: the request could not be used, the response could not be sent, or memory ran out.
inline constexpr int noResponse = 65;
inline constexpr int notConfined = 78;  ///< nothing was read: the sandbox or a limit is not in place

}  // namespace zelvo::exitStatus
