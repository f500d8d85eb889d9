#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* notTransitional = "only Transitional XLSX is supported";
inline constexpr const char* sheetCount = "worksheet count";

}  // namespace RefusalDetail

/// The names of the parts that are not worksheets.
namespace WorkbookParts {

inline constexpr std::string_view workbook = "xl/workbook.xml";
inline constexpr std::string_view relationships = "xl/_rels/workbook.xml.rels";
inline constexpr std::string_view sharedStrings = "xl/sharedStrings.xml";
inline constexpr std::string_view styles = "xl/styles.xml";

}  // namespace WorkbookParts

/// The contents of the workbook part, before the relationships are resolved.
struct WorkbookStructure {
  bool uses1904Dates = false;
  std::string calculationMode;
  XMLTree tree;  ///< lists the sheets: up to 200,000, which are not copied before they are counted

  /// Moves the tree out of `tree`, unless it throws `DocumentError` unsupported "only Transitional XLSX is
  /// supported".
  static WorkbookStructure read(XMLTree& tree);
};

/// One sheet of a workbook, in workbook order.
struct Sheet {
  std::string name;
  bool hidden = false;
  std::string path;  ///< the worksheet's part name
};

inline constexpr std::size_t maximumSheets = 64;
inline constexpr std::size_t maximumSheetNameCharacters = 64;

/// Lists the sheets with their parts. The package gate must have checked the targets. Throws
/// `DocumentError` invalidArchive "worksheet identity" or resourceLimit "worksheet count".
std::vector<Sheet> listSheets(const WorkbookStructure& structure, const RelationshipTargets& targets);

}  // namespace zelvo
