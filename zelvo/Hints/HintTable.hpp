#pragma once

#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// Who refused, and what.
enum class Stage : unsigned {
  reading = 1,         ///< the worker, a workbook as it is in its file
  readingCleaned = 2,  ///< the worker, a cleaned workbook
  cleaning = 4,        ///< the cleaner, a workbook
  validating = 8,      ///< the worker, a document
  research = 16,       ///< a confined child, research results
};

/// What helps after a refusal.
struct Advice {
  std::vector<std::string_view> hints;  ///< sentences
  bool findFileKind = false;            ///< the file may be of another kind than the stage takes
  bool tryCleaning = false;             ///< a cleaned workbook may be accepted
  bool listSheets = false;              ///< another sheet or range may be meant
  bool findCarriageReturn = false;      ///< a cell of the table may hold one, which no document keeps
};

/// The advice for the message of a refusal: one table for all commands. `selection` is the table that was
/// asked for; null if there was none.
Advice adviceFor(std::string_view message, Stage stage, const TableSelection* selection = nullptr);

}  // namespace zelvo
