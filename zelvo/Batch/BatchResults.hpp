#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "System/AppendFile.hpp"
#include "zelvo/Batch/BatchFiles.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// Where the lines of a batch go: a file, which is continued with `resume`, or standard output.
class BatchResults {
 public:
  /// Opens the file, which no other batch may have open. One with content is refused unless `resume` is set:
  /// then the files with a final outcome (answered, refused) are kept in mind, 16 bytes each, and the others
  /// are removed from the file, with a last line that is not whole.
  static Result<BatchResults> open(const std::string& path, bool resume);

  /// Whether an earlier run has a final outcome for the file.
  bool isFinal(std::string_view path) const;

  /// The highest status of the outcomes that an earlier run left.
  ExitStatus worst() const { return worst_; }

  /// Appends a line as one write. Fails if the file cannot be written.
  Failure append(const std::string& line) const;

 private:
  BatchResults(std::string path, AppendFile file) : path_(std::move(path)), file_(std::move(file)) {}

  Failure resume();

  std::string path_;  ///< empty for standard output
  AppendFile file_;
  std::vector<NameDigest> final_;  ///< sorted
  ExitStatus worst_ = ExitStatus::success;
};

}  // namespace zelvo
