#pragma once

#include <cstddef>
#include <string>

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Extraction/SheetRows.hpp"

namespace zelvo {

/// Rows as text for reading: the cells with their row numbers, aligned, then what was read, the notes (see
/// `cleaningNotes`), then the warnings. Columns with numbers are aligned to the right. Without a header row
/// the columns are named by their letters. Lines are indented, so that the file name can precede them.
///
/// `width` is the terminal's; 0 for no limit. Long texts are cut to fit, and if that does not help the
/// columns are printed in groups.
std::string describe(const SheetRows& rows, const CellTextOptions& options, std::size_t width,
                     const std::string& notes = "");

}  // namespace zelvo
