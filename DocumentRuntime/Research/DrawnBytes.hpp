#pragma once

#include <cstddef>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"

namespace zelvo {

/// Adds up the parts of a package while they are drawn, and stops where the archive's writer would refuse
/// them: a text that many parts repeat must not fill memory first. What the archive adds around the parts is
/// left to the writer.
class DrawnBytes {
 public:
  /// Throws `DocumentError` resourceLimit "output part".
  static void checkPart(std::size_t bytes) {
    if (bytes > BoundedZIP::maximumEntryBytes) throw DocumentError::resourceLimit("output part");
  }

  /// Adds a part. Throws `DocumentError` resourceLimit "output part" or "output archive".
  void add(std::size_t partBytes) {
    checkPart(partBytes);
    sum_ += partBytes;
    if (sum_ > BoundedZIP::maximumArchiveBytes) throw DocumentError::resourceLimit("output archive");
  }

 private:
  std::size_t sum_ = 0;
};

}  // namespace zelvo
