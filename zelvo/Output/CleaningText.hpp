#pragma once

#include <string>

#include "DocumentRuntime/Records/CleaningReport.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// How a workbook became the one that was read or written.
struct CleaningRecord {
  std::string sourceSHA256;  ///< of the workbook in the file
  std::string outputSHA256;  ///< of the cleaned workbook
  CleaningReport report;
};

/// What was left out and changed, for the end of a command's readable output: an empty line, then a line with
/// both digests and one line each for what was left out and changed. These lines are part of the result and
/// belong to its digest, so they are printed with it: standard error stays empty when a command succeeds.
std::string cleaningNotes(const CleaningRecord& cleaning);

/// A workbook that was cleaned into a file.
std::string describe(const CleaningRecord& cleaning, ByteView document);

}  // namespace zelvo
