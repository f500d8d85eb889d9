#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"

/// A second reading of a source workbook and of what the cleaner made of it. Shares no rule and no function
/// with the cleaner, only the reading of archives and XML.
namespace zelvo::CleaningReadBack {

struct Expectation {
  const std::vector<std::string>* sheets = nullptr;  ///< that were to be kept; null means all
  bool unmerge = false;
  bool plainFormats = false;
};

/// Walks source and result in step and says what differs first; none if nothing does: names, order and
/// visibility of the sheets, the date system, hidden rows and columns, merged areas, filters, and of every
/// cell with content its address, type, stored text, number format and formula. A shared formula that was
/// written out is moved back and compared with its first cell's.
///
/// Throws `DocumentError` where a part cannot be read.
std::optional<std::string> difference(OOXML::ArchiveTrees& source, OOXML::ArchiveTrees& result,
                                      const Expectation& expectation);

}  // namespace zelvo::CleaningReadBack
