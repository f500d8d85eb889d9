#pragma once

#include <cstddef>
#include <string_view>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

/// The limits of `WorkbookReader` on the written sheets, checked before writing: the reader's errors name
/// only the part, these errors name the text.
namespace zelvo::ResearchSheetLimits {

/// Rows of one text cell: four elements each (row, cell, inline string, text), and seven of the sheet itself.
inline constexpr std::size_t maximumTextRows = (OOXML::maximumXMLElements - 7) / 4;

/// Throws `DocumentError` resourceLimit "too many … for a sheet of 49998 rows".
void checkRows(std::size_t rows, std::string_view what);

/// Checks the Report and Sources sheets of a dataset's workbook, and the URLs of its rows. Throws
/// `DocumentError` resourceLimit: as above, or with the URL, or the identifier of the record, that has more
/// than 2,000 characters.
void check(const ResearchWorkbookContent& content);

}  // namespace zelvo::ResearchSheetLimits
