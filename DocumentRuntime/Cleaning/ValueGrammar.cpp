#include "DocumentRuntime/Cleaning/ValueGrammar.hpp"

#include <algorithm>
#include <initializer_list>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

bool isOneOf(std::string_view value, std::initializer_list<std::string_view> choices) {
  return std::find(choices.begin(), choices.end(), value) != choices.end();
}

}  // namespace

std::optional<CellAddress> plainCellOf(std::string_view value) {
  constexpr std::size_t maximumLength = 10;  // XFD1048576; prevents overflow
  if (value.size() > maximumLength) return std::nullopt;
  CellAddress address{.column = 0, .row = 0};
  std::size_t i = 0;
  for (; i < value.size() && value[i] >= 'A' && value[i] <= 'Z'; ++i)
    address.column = address.column * 26 + (value[i] - 'A' + 1);
  if (i == 0 || i == value.size() || value[i] == '0' || address.column > CellAddress::maximumColumn)
    return std::nullopt;
  for (; i < value.size() && value[i] >= '0' && value[i] <= '9'; ++i)
    address.row = address.row * 10 + (value[i] - '0');
  if (i < value.size() || address.row > CellAddress::maximumRow) return std::nullopt;
  return address;
}

std::optional<CellRange> areaOf(std::string_view value) {
  // The upper case of a few letters outside ASCII is one of A to Z; programs differ on whether these are
  // column letters.
  if (!Unicode::isASCII(value)) return std::nullopt;
  try {
    return CellRange::parse(value);
  } catch (const DocumentError&) {
    return std::nullopt;
  }
}

bool matches(Grammar grammar, std::string_view value) {
  switch (grammar) {
    case Grammar::text:
      return true;
    case Grammar::flag:
      return isOneOf(value, {"0", "1", "false", "true"});
    case Grammar::measure:
      return NumberText::isValid(value) && !value.starts_with('-');
    case Grammar::integer:
      return xmlInteger(value).has_value();
    case Grammar::index:
      return xmlInteger(value).value_or(-1) >= 0;
    case Grammar::rowNumber: {
      const std::int64_t number = xmlInteger(value).value_or(0);
      return number >= 1 && number <= CellAddress::maximumRow;
    }
    case Grammar::cell:
      return plainCellOf(value) || (value.find(':') == std::string_view::npos && areaOf(value));
    case Grammar::area:
      return areaOf(value).has_value();
    case Grammar::cellType:
      return isOneOf(value, {"", "b", "d", "e", "inlineStr", "n", "s", "str"});
    case Grammar::formulaType:
      return isOneOf(value, {"normal", "array", "dataTable", "shared"});
    case Grammar::sheetState:
      return isOneOf(value, {"visible", "hidden", "veryHidden"});
    case Grammar::calculationMode:
      return isOneOf(value, {"auto", "autoNoTable", "manual"});
    case Grammar::patternType:
      return isOneOf(value, {"none", "gray125"});
    case Grammar::preserve:
      return value == "preserve";
  }
  return false;
}

}  // namespace zelvo::Cleaning
