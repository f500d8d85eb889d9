#include "DocumentRuntime/Cleaning/FormulaUses.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/Cleaning/FormulaScanner.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

using Kind = FormulaToken::Kind;

/// In lower case, like the names below.
constexpr std::array<std::string_view, 7> outwardFunctions = {"webservice", "hyperlink", "image", "rtd",
                                                              "call",       "filterxml", "dde"};
constexpr std::string_view outwardStart = "register";  // and register.id

/// Prefixes of the names of functions that are newer than the format.
constexpr std::array<std::string_view, 2> functionPrefixes = {"_xlfn.", "_xlws."};
/// Prefix of the parameters of a function that a formula defines.
constexpr std::string_view parameterPrefix = "_xlpm.";

bool reachesOut(std::string_view function) {
  const std::string lower = ASCII::lowercased(function);
  std::string_view name = lower;
  for (const std::string_view prefix : functionPrefixes) {
    ASCII::takePrefix(name, prefix);
  }
  return name.starts_with(outwardStart) ||
         std::find(outwardFunctions.begin(), outwardFunctions.end(), name) != outwardFunctions.end();
}

bool isParameter(std::string_view name) {
  return ASCII::lowercased(name.substr(0, parameterPrefix.size())) == parameterPrefix;
}

/// The sheet names of a prefix, without its "!" and its quotes.
std::string sheetNames(std::string_view prefix) {
  prefix.remove_suffix(1);
  if (!prefix.starts_with('\'')) return std::string(prefix);
  std::string names;
  for (std::size_t i = 1; i + 1 < prefix.size(); ++i) {
    names += prefix[i];
    if (prefix[i] == '\'') ++i;
  }
  return names;
}

}  // namespace

FormulaUsesReader::FormulaUsesReader(const std::vector<std::string>& keptSheets) {
  for (const std::string& sheet : keptSheets)
    keptSheets_.push_back(Unicode::lowercased(sheet));
  std::sort(keptSheets_.begin(), keptSheets_.end());
}

FormulaUses FormulaUsesReader::read(std::string_view formula) {
  FormulaUses uses;
  bool followsOtherWorkbook = false;
  FormulaScanner scanner(formula);
  while (const auto token = scanner.next()) {
    switch (token->kind) {
      case Kind::sheet:
        readSheet(token->text, uses);
        break;
      case Kind::function:
        uses.outside = uses.outside || reachesOut(token->text);
        break;
      case Kind::name:
        // A name after the prefix of another workbook is defined there.
        if (!followsOtherWorkbook && !isParameter(token->text)) uses.definedNames = true;
        break;
      case Kind::structured:
        uses.tables = true;
        break;
      case Kind::exchange:
        uses.outside = true;
        break;
      case Kind::reference:
      case Kind::other:
        break;
    }
    followsOtherWorkbook = token->kind == Kind::sheet && token->text.find('[') != std::string_view::npos;
  }
  return uses;
}

void FormulaUsesReader::readSheet(std::string_view prefix, FormulaUses& uses) {
  if (prefix == keptPrefix_) return;
  const std::string names = sheetNames(prefix);
  if (names.find('[') != std::string::npos) {
    uses.otherWorkbooks = true;
    return;
  }
  const std::size_t colon = names.find(':');
  const std::string_view view = names;
  const bool areKept = colon == std::string::npos
                           ? isKept(view)
                           : isKept(view.substr(0, colon)) && isKept(view.substr(colon + 1));
  if (areKept) {
    keptPrefix_ = prefix;
  } else {
    uses.droppedSheets = true;
  }
}

bool FormulaUsesReader::isKept(std::string_view sheet) const {
  return std::binary_search(keptSheets_.begin(), keptSheets_.end(), Unicode::lowercased(sheet));
}

}  // namespace zelvo::Cleaning
