#include "DocumentRuntime/Cleaning/DroppedParts.hpp"

#include <algorithm>
#include <utility>

namespace zelvo::Cleaning {
namespace {

using enum CleaningKind;
using enum DroppedElement::Counts;

struct PartWords {
  std::string_view typeWord;  ///< in the content type
  std::string_view nameWord;  ///< in the name
  CleaningKind kind;
};

/// The first matching row is used. Content types are compared before names.
constexpr PartWords partWords[] = {
    {"package.relationships", ".rels", relationships},
    {"chartsheet", "chartsheets/", chartSheets},
    {"dialogsheet", "dialogsheets/", dialogSheets},
    {"macrosheet", "macrosheets/", macroSheets},
    {"spreadsheetml.worksheet", "worksheets/sheet", worksheets},
    {"printersettings", "printersettings/", printerSettings},
    {"vbaproject", "vbaproject", macros},
    {"vbadata", "vbadata", macros},
    {"activex", "activex/", controls},
    {"controlproperties", "ctrlprops/", controls},
    {"oleobject", "embeddings/", embeddedObjects},
    {"externallink", "externallinks/", externalLinks},
    {"querytable", "querytables/", dataConnections},
    {"spreadsheetml.connections", "connections.xml", dataConnections},
    {"pivot", "pivot", pivotTables},
    {"slicer", "slicer", slicers},
    {"timeline", "timeline", slicers},
    {"threadedcomments", "threadedcomments/", threadedComments},
    {"ms-excel.person", "persons/", threadedComments},
    {"comments", "comments", comments},
    {"spreadsheetml.table", "tables/", tables},
    {"richvalue", "richdata/", richValues},
    {"sheetmetadata", "xl/metadata.xml", cellMetadata},
    {"vmldrawing", ".vml", legacyDrawings},
    {"chart", "charts/", charts},
    {"customxml", "customxml/", customXML},
    {"properties", "docprops/", documentProperties},
    {"image/", "media/", pictures},
    {"drawing", "drawings/", drawings},
    {"digital-signature", "_xmlsignatures/", signatures},
    {"theme", "theme/", theme},
    {"calcchain", "calcchain.xml", calculationChain},
};

/// Programs store a picture of the first sheet as a property of the document.
constexpr std::string_view thumbnailStart = "docprops/thumbnail";

constexpr std::pair<std::string_view, DroppedElement> elements[] = {
    {"hyperlinks", {hyperlinks, children}},
    {"definedNames", {definedNames, children}},
    {"dataValidations", {dataValidations, children}},
    {"conditionalFormatting", {conditionalFormats, element}},
    {"sheetProtection", {protection, withAttributes}},
    {"protectedRanges", {protection, withAttributes}},
    {"workbookProtection", {protection, withAttributes}},
    {"headerFooter", {headersAndFooters, withChildren}},
    {"filterColumn", {filterConditions, element}},
    {"extLst", {extensionLists, element}},
    {"scenarios", {otherElements, element}},
    {"dataConsolidate", {otherElements, element}},
    {"customSheetViews", {otherElements, element}},
    {"customWorkbookViews", {otherElements, element}},
    {"webPublishItems", {otherElements, element}},
    {"webPublishObjects", {otherElements, element}},
    {"smartTags", {otherElements, element}},
    {"cellWatches", {otherElements, element}},
};

/// Appearance, packaging, and references to parts that are reported themselves.
constexpr std::string_view unreported[] = {
    "dimension",      "sheetPr",
    "sheetViews",     "sheetFormatPr",
    "sheetCalcPr",    "sortState",
    "printOptions",   "pageMargins",
    "pageSetup",      "rowBreaks",
    "colBreaks",      "customProperties",
    "ignoredErrors",  "drawing",
    "legacyDrawing",  "legacyDrawingHF",
    "drawingHF",      "picture",
    "oleObjects",     "controls",
    "tableParts",     "phoneticPr",
    "fileVersion",    "fileSharing",
    "bookViews",      "externalReferences",
    "pivotCaches",    "functionGroups",
    "fonts",          "fills",
    "borders",        "cellStyleXfs",
    "cellStyles",     "dxfs",
    "tableStyles",    "colors",
    "oleSize",        "smartTagPr",
    "smartTagTypes",  "webPublishing",
    "fileRecoveryPr",
};

}  // namespace

CleaningKind kindOfPart(std::string_view name, std::string_view contentType) {
  if (name.starts_with(thumbnailStart)) return documentProperties;
  for (const PartWords& words : partWords) {
    if (contentType.find(words.typeWord) != std::string_view::npos) return words.kind;
  }
  for (const PartWords& words : partWords) {
    if (name.find(words.nameWord) != std::string_view::npos) return words.kind;
  }
  return otherParts;
}

const DroppedElement* droppedElement(std::string_view localName) {
  static constexpr DroppedElement other = {otherElements, DroppedElement::Counts::element};
  const auto found = std::find_if(std::begin(elements), std::end(elements),
                                  [&](const auto& row) { return row.first == localName; });
  if (found != std::end(elements)) return &found->second;
  const bool isUnreported =
      std::find(std::begin(unreported), std::end(unreported), localName) != std::end(unreported);
  return isUnreported ? nullptr : &other;
}

}  // namespace zelvo::Cleaning
