#pragma once

#include <string>
#include <string_view>

namespace zelvo {

/// Replaces the content of the file at `path`, or creates it. Returns 0, or the error number; after an error
/// the old file is unchanged.
///
/// The bytes are written to a temporary file in the same folder with an unpredictable name, synced, and
/// renamed: a reader finds all of the new content or all of the old. A symbolic link stays, and its target is
/// replaced. A replaced file keeps its permissions; without those of its group if that group cannot be set. A
/// new file has the permissions of the process's umask. A target that is not a regular file (a FIFO, a
/// device) is written in place. `SignalCleanup` removes the temporary file.
///
/// The process must have one thread only while it writes a new file, since the umask is the process's. Throws
/// only `std::bad_alloc`.
int writeOutputFile(const std::string& path, std::string_view bytes);

}  // namespace zelvo
