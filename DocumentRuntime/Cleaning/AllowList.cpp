#include "DocumentRuntime/Cleaning/AllowList.hpp"

#include <algorithm>

namespace zelvo::Cleaning {
namespace {

using enum Attribute;
using enum OtherChildren;
using G = Grammar;

constexpr auto copied = Use::optional;
constexpr auto needed = Use::required;
constexpr auto read = Use::read;
constexpr auto made = Use::made;

constexpr bool unique = true;
constexpr bool repeated = false;
constexpr bool ours = true;

// clang-format off
/// In the order of `Tag`: the element, its attributes, its children in the order in which they are written.
constexpr ElementRule allowList[] = {
    // Generated: nothing of the source's packaging is kept.
    {Tag::types, "Types", {}, {{Tag::typeDefault, Tag::typeOverride}}, dropped, repeated, ours},
    {Tag::typeDefault, "Default", {{{{extension, G::text, made}}, {{contentType, G::text, made}}}}, {}, dropped, repeated, ours},
    {Tag::typeOverride, "Override", {{{{partName, G::text, made}}, {{contentType, G::text, made}}}}, {}, dropped, repeated, ours},
    {Tag::relationships, "Relationships", {}, {{Tag::relationship}}, dropped, repeated, ours},
    {Tag::relationship, "Relationship", {{{{identifier, G::text, made}}, {{type, G::text, made}}, {{target, G::text, made}}}},
     {}, dropped, repeated, ours},

    // The workbook part.
    {Tag::workbook, "workbook", {}, {{Tag::workbookProperties, Tag::bookViews, Tag::sheets, Tag::calculationProperties}}},
    {Tag::workbookProperties, "workbookPr", {{{{date1904, G::flag, copied}}}}, {}, dropped, unique},
    {Tag::bookViews, "bookViews", {}, {{Tag::workbookView}}, dropped, unique, ours},
    {Tag::workbookView, "workbookView", {{{{activeTab, G::index, made}}}}, {}, dropped, unique, ours},
    {Tag::sheets, "sheets", {}, {{Tag::sheet}}, dropped, unique},
    {Tag::sheet, "sheet",
     {{{{name, G::text, needed}}, {{sheetId, G::index, made}}, {{state, G::sheetState, made}}, {{relationshipID, G::text, needed}}}}},
    {Tag::calculationProperties, "calcPr", {{{{calculationMode, G::calculationMode, copied}}}}, {}, dropped, unique},

    // A worksheet.
    {Tag::worksheet, "worksheet", {}, {{Tag::columns, Tag::sheetData, Tag::autoFilter, Tag::mergeCells}}},
    {Tag::columns, "cols", {}, {{Tag::column}}},
    {Tag::column, "col",
     {{{{minimum, G::integer, copied}}, {{maximum, G::integer, copied}}, {{width, G::measure, copied}},
       {{hidden, G::flag, copied}}, {{customWidth, G::flag, copied}}}}},
    {Tag::sheetData, "sheetData", {}, {{Tag::row}}, refused, unique},
    {Tag::row, "row",
     {{{{position, G::rowNumber, needed}}, {{hidden, G::flag, copied}}, {{height, G::measure, copied}},
       {{customHeight, G::flag, copied}}}},
     {{Tag::cell}}, refused},
    {Tag::cell, "c", {{{{position, G::cell, needed}}, {{style, G::index, needed}}, {{valueType, G::cellType, needed}}}},
     {{Tag::formula, Tag::value, Tag::inlineString}}, refused},
    {Tag::formula, "f",
     {{{{valueType, G::formulaType, needed}}, {{sharedIndex, G::index, read}}, {{reference, G::area, copied}},
       {{isTwoDimensional, G::flag, copied}}, {{isRow, G::flag, copied}}, {{firstInput, G::cell, copied}},
       {{secondInput, G::cell, copied}}, {{space, G::preserve, made}}}},
     {}, allRefused, unique},
    {Tag::value, "v", {{{{space, G::preserve, made}}}}, {}, allRefused, unique},
    {Tag::inlineString, "is", {}, {{Tag::text, Tag::run}}, refused, unique},
    {Tag::autoFilter, "autoFilter", {{{{reference, G::area, copied}}}}, {}, dropped, unique},
    {Tag::mergeCells, "mergeCells", {}, {{Tag::mergeCell}}},
    {Tag::mergeCell, "mergeCell", {{{{reference, G::area, needed}}}}},

    // The shared strings.
    {Tag::strings, "sst", {}, {{Tag::string}}},
    {Tag::string, "si", {}, {{Tag::text, Tag::run}}, refused},
    {Tag::run, "r", {}, {{Tag::text}}, refused},
    {Tag::text, "t", {{{{space, G::preserve, made}}}}, {}, allRefused, unique},

    // The styles: number formats, and what every workbook must have.
    {Tag::styleSheet, "styleSheet", {},
     {{Tag::numberFormats, Tag::fonts, Tag::fills, Tag::borders, Tag::cellStyleFormats, Tag::cellFormats}}},
    {Tag::numberFormats, "numFmts", {}, {{Tag::numberFormat}}, dropped, unique},
    {Tag::numberFormat, "numFmt", {{{{formatID, G::integer, copied}}, {{formatCode, G::text, copied}}}}},
    {Tag::fonts, "fonts", {}, {{Tag::font}}, dropped, unique, ours},
    {Tag::font, "font", {}, {}, dropped, unique, ours},
    {Tag::fills, "fills", {}, {{Tag::fill}}, dropped, unique, ours},
    {Tag::fill, "fill", {}, {{Tag::patternFill}}, dropped, repeated, ours},
    {Tag::patternFill, "patternFill", {{{{pattern, G::patternType, made}}}}, {}, dropped, unique, ours},
    {Tag::borders, "borders", {}, {{Tag::border}}, dropped, unique, ours},
    {Tag::border, "border", {}, {}, dropped, unique, ours},
    {Tag::cellStyleFormats, "cellStyleXfs", {}, {{Tag::format}}, dropped, unique, ours},
    {Tag::cellFormats, "cellXfs", {}, {{Tag::format}}, refused, unique},
    {Tag::format, "xf", {{{{formatID, G::integer, copied}}, {{applyNumberFormat, G::flag, made}}}}, {}, refused},
};

/// In the order of `Attribute`.
constexpr std::string_view attributeNames[] = {
    "Extension", "PartName", "ContentType", "Id", "Type", "Target",
    "date1904", "activeTab", "name", "sheetId", "state", "r:id", "calcMode",
    "min", "max", "hidden", "width", "customWidth", "r", "ht", "customHeight", "s", "t", "ref",
    "si", "r1", "r2", "dt2D", "dtr", "xml:space",
    "numFmtId", "formatCode", "applyNumberFormat", "patternType",
};
// clang-format on

static_assert(std::size(allowList) == tagCount && std::size(attributeNames) == attributeCount);
static_assert([] {
  for (std::size_t i = 0; i < tagCount; ++i) {
    if (allowList[i].tag != static_cast<Tag>(i)) return false;
  }
  return true;
}());

/// Appearance, phonetic text, and extensions.
constexpr std::string_view valueless[] = {"extLst", "rPh", "phoneticPr", "rPr", "alignment", "protection"};

constexpr std::string_view mainDeclaration =
    R"( xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")";

}  // namespace

const ElementRule& rule(Tag tag) {
  return allowList[static_cast<std::size_t>(tag)];
}

std::string_view name(Attribute attribute) {
  return attributeNames[static_cast<std::size_t>(attribute)];
}

const ElementRule* childRule(Tag parent, std::string_view localName) {
  for (const auto& child : rule(parent).children) {
    if (!child) break;
    const ElementRule& found = rule(*child);
    if (found.name == localName && !found.isMade) return &found;
  }
  return nullptr;
}

bool isValueless(std::string_view localName) {
  return std::find(std::begin(valueless), std::end(valueless), localName) != std::end(valueless);
}

std::string_view namespaceDeclarations(Tag root) {
  switch (root) {
    case Tag::workbook:
      return R"( xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main")"
             R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")";
    case Tag::worksheet:
    case Tag::strings:
    case Tag::styleSheet:
      return mainDeclaration;
    case Tag::types:
      return R"( xmlns="http://schemas.openxmlformats.org/package/2006/content-types")";
    case Tag::relationships:
      return R"( xmlns="http://schemas.openxmlformats.org/package/2006/relationships")";
    default:
      return {};
  }
}

}  // namespace zelvo::Cleaning
