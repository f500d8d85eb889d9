#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the workbook cleaner says about its work. Plain values, compared field by field; the fields stand in
/// the order of their JSON keys. Texts are UTF-8 and come from an untrusted document.
namespace zelvo {

/// One sheet of the cleaned workbook.
struct CleanedSheet {
  std::string name;
  std::int64_t cells = 0;     ///< that hold a value, a formula or a text
  std::int64_t formulas = 0;  ///< of these cells

  bool operator==(const CleanedSheet&) const = default;
};

struct SheetCount {
  std::int64_t sheet = 0;  ///< index into `CleaningReport::sheets`
  std::int64_t count = 0;

  bool operator==(const SheetCount&) const = default;
};

/// Something that was left out.
struct DroppedContent {
  std::string kind;  ///< of `CleaningKind`
  std::int64_t count = 0;
  std::vector<std::string> parts;                 ///< the names of the parts that held it
  std::optional<std::vector<std::string>> names;  ///< of sheets: the first `maximumListedNames`
  std::optional<std::vector<SheetCount>> sheets;  ///< where it was found, as far as it stood in kept sheets

  static constexpr std::size_t maximumListedNames = 1000;

  bool operator==(const DroppedContent&) const = default;
};

/// Something that was written in another way than it was read, or that reads differently without what was
/// left out.
struct ChangedContent {
  std::string kind;  ///< of `CleaningKind`
  std::int64_t count = 0;
  std::optional<std::string> code;  ///< of a number format: the code that was replaced
  std::optional<std::vector<SheetCount>> sheets;

  bool operator==(const ChangedContent&) const = default;
};

struct CleaningReport {
  std::vector<CleanedSheet> sheets;
  std::vector<DroppedContent> dropped;
  std::vector<ChangedContent> changed;

  bool operator==(const CleaningReport&) const = default;
};

/// What is told apart in a report, in the order in which it is listed: first what is dropped.
enum class CleaningKind : std::uint8_t {
  // Sheets and parts.
  worksheets,
  chartSheets,
  dialogSheets,
  macroSheets,
  pictures,
  charts,
  drawings,
  comments,
  threadedComments,
  legacyDrawings,
  printerSettings,
  macros,
  controls,
  embeddedObjects,
  externalLinks,
  dataConnections,
  pivotTables,
  slicers,
  tables,
  richValues,
  signatures,
  customXML,
  documentProperties,
  theme,
  calculationChain,
  relationships,
  otherParts,
  // What stands in the parts that are kept.
  hyperlinks,
  definedNames,
  dataValidations,
  conditionalFormats,
  protection,
  headersAndFooters,
  filterConditions,
  phoneticRuns,
  cellMetadata,
  emptyCells,
  emptyRows,
  wrongAttributes,
  extensionLists,
  alternateContent,
  foreignElements,
  otherElements,
  // What is changed, not dropped.
  strictConformance,
  workbookType,
  sharedFormulas,
  sharedFormulasWithoutMaster,
  impliedPositions,
  sheetStates,
  numberFormats,
  mergedAreas,
  coveredCells,
  otherWorkbookFormulas,
  definedNameFormulas,
  tableFormulas,
  droppedSheetFormulas,
  outwardFormulas,
};
inline constexpr std::size_t cleaningKindCount = static_cast<std::size_t>(CleaningKind::outwardFormulas) + 1;
inline constexpr CleaningKind firstChangedKind = CleaningKind::strictConformance;

/// The kind's name in reports.
std::string_view kindName(CleaningKind kind);

/// What was left out, human-readable: "2 pictures, printer settings of 3 sheets, 11,672 hyperlinks". Without
/// what every workbook loses, such as its theme. Empty if nothing else was left out.
std::string droppedInWords(const CleaningReport& report);

/// The same for what was changed.
std::string changedInWords(const CleaningReport& report);

}  // namespace zelvo
