#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// A workbook's inspection for people: its sheets as a table, then the workbook's facts, warnings last. Lines
/// are indented, so that the file's name can stand above them.
std::string describe(const WorkbookInspection& inspection);

}  // namespace zelvo
