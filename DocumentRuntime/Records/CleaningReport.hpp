#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The report of the workbook cleaner. Plain values, compared field by field, fields in the order of their
/// JSON keys. Texts are UTF-8 and come from an untrusted document.
namespace zelvo {

/// One sheet of the cleaned workbook.
struct CleanedSheet {
  std::string name;
  std::int64_t cells = 0;     ///< with a value, a formula or a text
  std::int64_t formulas = 0;  ///< of these cells

  bool operator==(const CleanedSheet&) const = default;
};

struct SheetCount {
  std::int64_t sheet = 0;  ///< index into `CleaningReport::sheets`
  std::int64_t count = 0;

  bool operator==(const SheetCount&) const = default;
};

/// Content that was dropped.
struct DroppedContent {
  std::string kind;  ///< of `CleaningKind`
  std::int64_t count = 0;
  std::vector<std::string> parts;                 ///< the names of the dropped parts
  std::optional<std::vector<std::string>> names;  ///< of sheets: the first `maximumListedNames`
  std::optional<std::vector<SheetCount>> sheets;  ///< counts in the kept sheets

  static constexpr std::size_t maximumListedNames = 1000;

  bool operator==(const DroppedContent&) const = default;
};

/// Content that was written in another form, or that reads differently without the dropped content.
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

/// The kinds of a report, in the order in which they are listed: dropped content first.
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
  // Content of kept parts.
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
  // Changed content.
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

/// The dropped content, human-readable: "2 pictures, printer settings of 3 sheets, 11,672 hyperlinks". Leaves
/// out content that every workbook loses, such as its theme. Empty if nothing else was dropped.
std::string droppedInWords(const CleaningReport& report);

/// The same for changed content.
std::string changedInWords(const CleaningReport& report);

}  // namespace zelvo
