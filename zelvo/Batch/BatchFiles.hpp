#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// One file of a batch.
struct BatchFile {
  std::string path;      ///< as it is opened and printed; any bytes
  std::string relative;  ///< below the folder that was walked; for a file given by name, the path itself
  std::optional<CommandError> error;  ///< the path is a folder that cannot be read
};

/// The files that a command line names, one after the other: memory does not grow with their number.
///
/// Folders are walked without following symbolic links; of their files those are taken that end in .xlsx,
/// .xlsm or .xltx, in any case of letters, and do not begin with "~$". A file given by name is always taken.
class BatchFiles {
 public:
  /// Opens the list of files, if there is one. A list that must be read twice and is no file (a pipe) is
  /// copied to a temporary file first.
  static Result<BatchFiles> open(const BatchArguments& arguments, bool mustRewind);

  /// Returns nullopt after the last file, or when reading the list fails: see `error`.
  std::optional<BatchFile> next();
  /// Starts again with the first file.
  void rewind();
  /// Why the list ended early.
  const Failure& error() const { return error_; }

 private:
  struct CloseFile {
    void operator()(std::FILE* file) const;
  };
  using List = std::unique_ptr<std::FILE, CloseFile>;

  BatchFiles(const BatchArguments& arguments, List list);

  std::optional<std::string> nextName();
  std::optional<BatchFile> nextOfFolders();
  void enter(const std::filesystem::path& folder, std::optional<BatchFile>& unreadable);

  std::vector<std::string> paths_;
  std::size_t nextPath_ = 0;
  List list_;
  char separator_ = '\n';
  std::string listName_;
  Failure error_;

  std::filesystem::path root_;  ///< the folder of the command line that is being walked
  std::vector<std::filesystem::directory_iterator> folders_;  ///< open, from the root to the current one
};

/// Enough of a name's SHA-256 that no two names share it.
using NameDigest = std::array<std::uint8_t, 16>;
NameDigest nameDigest(std::string_view name);

/// Whether a file belongs to shard `index` of `count`, 1 to `count`. Depends on the name alone, so that
/// machines share a list without communication.
bool isInShard(std::string_view path, std::int64_t index, std::int64_t count);

/// The path of the cleaned workbook below the output folder: the relative path, with the ending .xlsx.
/// Returns nullopt for an absolute path and one with "..", which could lead out of the folder.
std::optional<std::string> cleanedName(std::string_view relative);

}  // namespace zelvo
