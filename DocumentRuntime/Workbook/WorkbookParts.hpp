#pragma once

#include <string_view>

/// The parts of a workbook that have fixed names.
namespace zelvo::WorkbookParts {

inline constexpr std::string_view workbook = "xl/workbook.xml";
inline constexpr std::string_view relationships = "xl/_rels/workbook.xml.rels";
inline constexpr std::string_view sharedStrings = "xl/sharedStrings.xml";
inline constexpr std::string_view styles = "xl/styles.xml";

}  // namespace zelvo::WorkbookParts
