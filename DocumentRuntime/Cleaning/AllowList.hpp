#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "DocumentRuntime/Cleaning/ValueGrammar.hpp"

/// The elements and attributes that are read from a source workbook and written to a cleaned one: one table,
/// in AllowList.cpp.
namespace zelvo::Cleaning {

enum class Tag : std::uint8_t {
  types,
  typeDefault,
  typeOverride,
  relationships,
  relationship,
  workbook,
  workbookProperties,
  bookViews,
  workbookView,
  sheets,
  sheet,
  calculationProperties,
  worksheet,
  columns,
  column,
  sheetData,
  row,
  cell,
  formula,
  value,
  inlineString,
  autoFilter,
  mergeCells,
  mergeCell,
  strings,
  string,
  run,
  text,
  styleSheet,
  numberFormats,
  numberFormat,
  fonts,
  font,
  fills,
  fill,
  patternFill,
  borders,
  border,
  cellStyleFormats,
  cellFormats,
  format,
};
inline constexpr std::size_t tagCount = static_cast<std::size_t>(Tag::format) + 1;

enum class Attribute : std::uint8_t {
  extension,
  partName,
  contentType,
  identifier,
  type,
  target,
  date1904,
  activeTab,
  name,
  sheetId,
  state,
  relationshipID,
  calculationMode,
  minimum,
  maximum,
  hidden,
  width,
  customWidth,
  position,
  height,
  customHeight,
  style,
  valueType,
  reference,
  sharedIndex,
  firstInput,
  secondInput,
  isTwoDimensional,
  isRow,
  space,
  formatID,
  formatCode,
  applyNumberFormat,
  pattern,
};
inline constexpr std::size_t attributeCount = static_cast<std::size_t>(Attribute::pattern) + 1;

/// The source of an attribute's value, and the handling of a value outside its grammar.
enum class Use : std::uint8_t {
  optional,  ///< copied; dropped if invalid
  required,  ///< copied; the workbook is refused if invalid
  read,      ///< read, not written; the workbook is refused if invalid
  made,      ///< written, never read
};

struct AttributeRule {
  Attribute attribute;
  Grammar grammar;
  Use use;
};

/// The handling of child elements that are not in the table.
enum class OtherChildren : std::uint8_t {
  dropped,
  refused,     ///< except for those without a value: see `isValueless`
  allRefused,  ///< the element is a text: readers differ on what children add to it
};

inline constexpr std::size_t maximumRules = 8;

struct ElementRule {
  Tag tag;
  std::string_view name;
  std::array<std::optional<AttributeRule>, maximumRules> attributes = {};
  std::array<std::optional<Tag>, maximumRules> children = {};
  OtherChildren otherChildren = OtherChildren::dropped;
  bool isUnique = false;  ///< a second one in the same parent refuses the workbook
  bool isMade = false;    ///< written, never read
};

const ElementRule& rule(Tag tag);
std::string_view name(Attribute attribute);

/// The rule of a child element with that local name in the main namespace. Null if such a child is not read.
const ElementRule* childRule(Tag parent, std::string_view localName);

/// Whether an element of the main namespace may be dropped where `OtherChildren::refused` applies.
bool isValueless(std::string_view localName);

/// The namespace declarations of a root element, as they are written; empty for other elements.
std::string_view namespaceDeclarations(Tag root);

}  // namespace zelvo::Cleaning
