#pragma once

#include <string_view>

#include "DocumentRuntime/Validation/GeneratedPackage.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"

namespace zelvo {

inline constexpr std::string_view wordPartName = "word/document.xml";

/// Reads the one table of a Word document into `table`. Throws `DocumentError` validationFailed "unexpected
/// Word package part" or "Word table".
void readWord(const GeneratedPackage& package, TableReadBack& table);

}  // namespace zelvo
