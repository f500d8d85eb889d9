#pragma once

#include <string_view>

#include "DocumentRuntime/Validation/GeneratedPackage.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"

namespace zelvo {

inline constexpr std::string_view wordPartName = "word/document.xml";

/// The one table of a Word document. Throws `DocumentError` validationFailed "unexpected Word package part"
/// or "Word table".
TableTexts readWord(const GeneratedPackage& package);

}  // namespace zelvo
