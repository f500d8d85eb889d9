#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zelvo {

/// What happens to a file that exists at the path.
enum class ExistingFile {
  replaced,
  kept,  ///< writing fails with EEXIST, also if the file appears meanwhile
};

/// Replaces the content of the file at `path`, or creates it. Returns 0, or the error number; after an error
/// the old file is unchanged.
///
/// The bytes are written to a temporary file in the same folder with an unpredictable name, synced, and
/// renamed: a reader finds all of the new content or all of the old. A symbolic link stays, and its target is
/// replaced. A replaced file keeps its permissions; without those of its group if that group cannot be set. A
/// new file has the permissions of the process's umask. A target that is not a regular file (a FIFO, a
/// device) is written in place. `SignalCleanup` removes the temporary file.
///
/// May be called from several threads at once. Throws only `std::bad_alloc`.
int writeOutputFile(const std::string& path, std::string_view bytes,
                    ExistingFile existing = ExistingFile::replaced);

/// Appends bytes to a file. Returns 0 or the error number.
using WriteBytes = std::function<int(std::string_view bytes)>;
/// Writes a content piece by piece with the given function. Returns 0, or the error number for which the file
/// is given up.
using OutputContent = std::function<int(const WriteBytes& write)>;

/// The same for a content that is not in memory. Throws what `content` throws, and then, too, leaves what was
/// there.
int writeOutputFile(const std::string& path, const OutputContent& content,
                    ExistingFile existing = ExistingFile::replaced);

}  // namespace zelvo
