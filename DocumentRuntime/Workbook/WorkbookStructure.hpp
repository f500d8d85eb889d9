#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// What the workbook part says, before it is put together with the workbook's relationships.
struct WorkbookStructure {
  bool uses1904Dates = false;
  std::string calculationMode;
  XMLTree tree;  ///< lists the sheets: up to 200,000, which are not copied before they are counted

  /// Moves the tree out of `tree`, unless it throws `DocumentError` unsupported "only Transitional XLSX is
  /// supported".
  static WorkbookStructure read(XMLTree& tree);
};

/// The targets of a relationships part by identifier.
class RelationshipTargets {
 public:
  /// Relationships without identifier or target are passed over. The gate has refused repeated identifiers.
  static RelationshipTargets read(XMLNode root);

  /// Valid while this lives.
  std::optional<std::string_view> find(std::string_view identifier) const;

 private:
  struct Entry {
    std::string identifier;
    std::string target;
  };
  std::vector<Entry> entries_;  ///< sorted by identifier
};

/// One sheet of a workbook, in workbook order.
struct Sheet {
  std::string name;
  bool hidden = false;
  std::string path;  ///< the worksheet's part name
};

inline constexpr std::size_t maximumSheets = 64;
inline constexpr std::size_t maximumSheetNameCharacters = 64;

/// Puts names, visibility and parts together. The package gate must have resolved the targets. Throws
/// `DocumentError` invalidArchive "worksheet identity" or resourceLimit "worksheet count".
std::vector<Sheet> listSheets(const WorkbookStructure& structure, const RelationshipTargets& targets);

}  // namespace zelvo
