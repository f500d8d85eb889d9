#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// An extracted table as text: the displayed cells with their row numbers, then the table's facts, the notes
/// (see `cleaningNotes`), then the warnings. Lines are indented, so that the file name can precede them.
std::string describe(const SourceTable& table, const std::string& notes = "");

/// The titles and the displayed cells as CSV (RFC 4180): the titles first, every line ended by CR LF. For a
/// terminal, control characters including line breaks are written as escapes.
std::string csv(const SourceTable& table, bool isForTerminal);

}  // namespace zelvo
