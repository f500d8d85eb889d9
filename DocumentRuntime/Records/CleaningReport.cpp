#include "DocumentRuntime/Records/CleaningReport.hpp"

#include <algorithm>
#include <array>

#include "Text/ASCII.hpp"

namespace zelvo {
namespace {

/// A kind's name, and its phrases for a count of one and of many; "#" is replaced by the number. Kinds
/// without phrases are left out of sentences: packaging, and contents of every workbook.
struct KindText {
  CleaningKind kind;
  std::string_view name;
  std::string_view one = {};
  std::string_view many = {};
};

using enum CleaningKind;

// clang-format off
constexpr KindText kindTexts[] = {
    {worksheets, "worksheets", "1 worksheet", "# worksheets"},
    {chartSheets, "chart sheets", "1 chart sheet", "# chart sheets"},
    {dialogSheets, "dialog sheets", "1 dialog sheet", "# dialog sheets"},
    {macroSheets, "macro sheets", "1 macro sheet", "# macro sheets"},
    {pictures, "pictures", "1 picture", "# pictures"},
    {charts, "charts", "1 chart", "# charts"},
    {drawings, "drawings", "1 drawing", "# drawings"},
    {comments, "comments", "comments of 1 sheet", "comments of # sheets"},
    {threadedComments, "threaded comments", "threaded comments of 1 sheet", "threaded comments of # sheets"},
    {legacyDrawings, "legacy drawings"},
    {printerSettings, "printer settings", "printer settings of 1 sheet", "printer settings of # sheets"},
    {macros, "macros", "macros", "macros"},
    {controls, "controls", "1 control", "# controls"},
    {embeddedObjects, "embedded objects", "1 embedded object", "# embedded objects"},
    {externalLinks, "links to other workbooks", "links to 1 other workbook", "links to # other workbooks"},
    {dataConnections, "data connections", "1 data connection", "# data connections"},
    {pivotTables, "pivot tables", "1 part of pivot tables", "# parts of pivot tables"},
    {slicers, "slicers", "1 slicer", "# slicers"},
    {tables, "tables", "1 table", "# tables"},
    {richValues, "rich values", "1 rich value", "# rich values"},
    {signatures, "signatures", "1 signature", "# signatures"},
    {customXML, "custom XML", "1 part of custom XML", "# parts of custom XML"},
    {documentProperties, "document properties"},
    {theme, "theme"},
    {calculationChain, "calculation chain"},
    {relationships, "relationships"},
    {otherParts, "other parts", "1 other part", "# other parts"},
    {hyperlinks, "hyperlinks", "1 hyperlink", "# hyperlinks"},
    {definedNames, "defined names", "1 defined name", "# defined names"},
    {dataValidations, "data validations", "1 data validation", "# data validations"},
    {conditionalFormats, "conditional formats", "1 conditional format", "# conditional formats"},
    {protection, "protection", "protection", "protection"},
    {headersAndFooters, "headers and footers", "headers and footers of 1 sheet", "headers and footers of # sheets"},
    {filterConditions, "filter conditions", "1 filter condition", "# filter conditions"},
    {phoneticRuns, "phonetic runs", "1 phonetic run", "# phonetic runs"},
    {cellMetadata, "cell metadata", "metadata of 1 cell", "metadata of # cells"},
    {emptyCells, "empty cells"},
    {emptyRows, "empty rows"},
    {wrongAttributes, "attributes with a wrong value", "1 attribute with a wrong value", "# attributes with wrong values"},
    {extensionLists, "extension lists"},
    {alternateContent, "alternate content"},
    {foreignElements, "foreign elements"},
    {otherElements, "other elements", "1 other element", "# other elements"},

    {strictConformance, "strict conformance", "written as Transitional instead of Strict", "written as Transitional instead of Strict"},
    {workbookType, "workbook type", "written as a plain workbook", "written as a plain workbook"},
    {sharedFormulas, "shared formulas written out", "1 shared formula written out", "# shared formulas written out"},
    {sharedFormulasWithoutMaster, "shared formulas without a master", "1 shared formula without its text", "# shared formulas without their text"},
    {impliedPositions, "implied positions"},
    {sheetStates, "sheet states", "1 sheet hidden for its unknown state", "# sheets hidden for their unknown states"},
    {numberFormats, "number formats", "replaced in 1 cell", "replaced in # cells"},
    {mergedAreas, "merged areas removed", "1 merged area removed", "# merged areas removed"},
    {coveredCells, "covered cells", "1 cell that a merged area covered", "# cells that merged areas covered"},
    {otherWorkbookFormulas, "formulas that name other workbooks", "1 formula that names another workbook", "# formulas that name other workbooks"},
    {definedNameFormulas, "formulas that use defined names", "1 formula that uses defined names", "# formulas that use defined names"},
    {tableFormulas, "formulas that use tables", "1 formula that uses tables", "# formulas that use tables"},
    {droppedSheetFormulas, "formulas that name dropped sheets", "1 formula that names dropped sheets", "# formulas that name dropped sheets"},
    {outwardFormulas, "formulas that reach out", "1 formula that reaches out of the workbook", "# formulas that reach out of the workbook"},
};
// clang-format on

static_assert(std::size(kindTexts) == cleaningKindCount);
static_assert([] {
  for (std::size_t i = 0; i < cleaningKindCount; ++i) {
    if (kindTexts[i].kind != static_cast<CleaningKind>(i)) return false;
  }
  return true;
}());

/// Empty for a kind without phrases. An unknown kind, of a later release, is given by its name.
std::string phrase(std::string_view kind, std::int64_t count) {
  const auto known = std::find_if(std::begin(kindTexts), std::end(kindTexts),
                                  [&](const KindText& text) { return text.name == kind; });
  std::string words = "# ";
  words += kind;
  if (known != std::end(kindTexts)) words = count == 1 ? known->one : known->many;
  if (const std::size_t sign = words.find('#'); sign != std::string::npos)
    words.replace(sign, 1, ASCII::grouped(std::to_string(count)));
  return words;
}

void append(std::string& list, const std::string& words) {
  if (words.empty()) return;
  if (!list.empty()) list += ", ";
  list += words;
}

}  // namespace

std::string_view kindName(CleaningKind kind) {
  return kindTexts[static_cast<std::size_t>(kind)].name;
}

std::string droppedInWords(const CleaningReport& report) {
  std::string list;
  for (const DroppedContent& dropped : report.dropped)
    append(list, phrase(dropped.kind, dropped.count));
  return list;
}

std::string changedInWords(const CleaningReport& report) {
  std::string list;
  for (const ChangedContent& changed : report.changed) {
    const std::string words = phrase(changed.kind, changed.count);
    append(list, changed.code ? "number format " + *changed.code + ' ' + words : words);
  }
  return list;
}

}  // namespace zelvo
