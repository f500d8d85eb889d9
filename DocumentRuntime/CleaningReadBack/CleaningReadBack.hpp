#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"

/// An independent comparison of a source workbook with its cleaned copy. Shares no rule with the cleaner,
/// only the layers below both: archives, XML, cell addresses.
namespace zelvo::CleaningReadBack {

struct Expectation {
  const std::vector<std::string>* sheets = nullptr;  ///< the sheets to keep; null means all
  bool unmerge = false;
  bool plainFormats = false;
};

/// Compares source and result. Returns the first difference, or nullopt. Compares names, order and visibility
/// of the sheets, the date system, hidden rows and columns, merged areas, filters, and for every cell with
/// content its address, type, stored text, number format and formula. A shared formula that was written out
/// is compared with its master after its references are moved back.
///
/// Throws `DocumentError` if a part cannot be read.
std::optional<std::string> difference(OOXML::ArchiveTrees& source, OOXML::ArchiveTrees& result,
                                      const Expectation& expectation);

}  // namespace zelvo::CleaningReadBack
