#pragma once

#include <string>
#include <string_view>

namespace zelvo {

/// Replaces the content of the file at `path`, or creates it, and returns 0; or returns the error number and
/// leaves what was there as it was.
///
/// The bytes are written to a file beside it with an unpredictable name, synced, and renamed: a reader finds
/// all of the new content or all of the old. A symbolic link stays, and the file that it leads to is
/// replaced. A replaced file keeps its permissions; its group loses them if the new file cannot be given that
/// group. A new file gets what the process's umask leaves. What is no regular file (a FIFO, a device) is
/// written in place. `SignalCleanup` removes the file beside.
///
/// The process must have one thread only while it writes a new file, since the umask is the process's. Throws
/// only `std::bad_alloc`.
int writeOutputFile(const std::string& path, std::string_view bytes);

}  // namespace zelvo
