#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// An extracted table for people: what the cells show, with the rows' numbers; then the table's facts,
/// warnings last. Lines are indented, so that the file's name can stand above them.
std::string describe(const SourceTable& table);

/// What the titles and cells show, as RFC 4180 has it: the titles first, every line ended by CR LF. A
/// terminal is given its control characters, line breaks among them, as escapes.
std::string csv(const SourceTable& table, bool isForTerminal);

}  // namespace zelvo
