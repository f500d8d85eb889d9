#include "DocumentRuntime/CleaningReadBack/CleaningReadBack.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "DocumentRuntime/CleaningReadBack/BookReadBack.hpp"
#include "DocumentRuntime/CleaningReadBack/SheetReadBack.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/ASCII.hpp"

namespace zelvo::CleaningReadBack {
namespace {

using Entry = OOXML::ArchiveTrees::Entry;

std::optional<std::string> compareStrings(OOXML::ArchiveTrees& source, const Entry* sourcePart,
                                          OOXML::ArchiveTrees& result, const Entry* resultPart) {
  if ((sourcePart == nullptr) != (resultPart == nullptr)) return "shared strings";
  if (sourcePart == nullptr) return std::nullopt;
  const Element sourceRoot(source.root(*sourcePart));
  const Element resultRoot(result.root(*resultPart));
  const auto sourceItems = named(sourceRoot, "si");
  const auto resultItems = named(resultRoot, "si");
  if (sourceItems.size() != resultItems.size()) return "number of shared strings";
  for (std::size_t i = 0; i < sourceItems.size(); ++i) {
    if (stringText(Element(sourceRoot, sourceItems[i])) != stringText(Element(resultRoot, resultItems[i])))
      return "shared string " + std::to_string(i);
  }
  return std::nullopt;
}

/// The number formats of a styles part: the format id of each cell style, and the codes of the ids that the
/// part defines.
struct Formats {
  std::vector<std::optional<std::int64_t>> styles;
  std::map<std::int64_t, std::string> codes;

  Formats(OOXML::ArchiveTrees& trees, const Entry* part) {
    if (part == nullptr) return;
    const Element root(trees.root(*part));
    for (const XMLNode list : named(root, "numFmts")) {
      for (const XMLNode format : named(Element(root, list), "numFmt")) {
        const auto id = xmlInteger(format.attribute("numFmtId"));
        if (id && format.attribute("formatCode")) codes.emplace(*id, *format.attribute("formatCode"));
      }
    }
    for (const XMLNode list : named(root, "cellXfs")) {
      for (const XMLNode style : named(Element(root, list), "xf"))
        styles.push_back(xmlInteger(style.attribute("numFmtId")));
    }
  }

  const std::string* code(std::int64_t id) const {
    const auto found = codes.find(id);
    return found == codes.end() ? nullptr : &found->second;
  }
};

/// Whether a plain code is a correct replacement of `code`: a date for a date, a time for a time. `code` is
/// null for a built-in format.
bool isPlainFormOf(const std::string& plain, const std::string* code) {
  const bool isDate = plain == "yyyy-mm-dd";
  const bool isDateTime = plain == "yyyy-mm-dd hh:mm:ss";
  const bool isTime = plain == "h:mm:ss";
  if (!isDate && !isDateTime && !isTime && plain != "General") return false;
  if (code == nullptr) return true;
  std::set<char> tokens;
  char closing = '\0';
  for (std::size_t i = 0; i < code->size(); ++i) {
    const char c = ASCII::lowercased((*code)[i]);
    if (closing != '\0') {
      if (c == closing) closing = '\0';
    } else if (c == '"' || c == '[') {
      closing = c == '"' ? '"' : ']';
    } else if (c == '\\' || c == '_' || c == '*') {
      ++i;
    } else if (c == 'a' && i + 2 < code->size()) {
      i += (*code)[i + 1] == '/' ? 2 : 4;
    } else if (c == ';') {
      break;
    } else {
      tokens.insert(c);
    }
  }
  const bool hasDay = tokens.contains('y') || tokens.contains('d');
  const bool hasTime = tokens.contains('h') || tokens.contains('s');
  if (hasDay) return hasTime ? isDateTime : isDate || (isDateTime && tokens.contains('m'));
  if (hasTime) return isTime || (isDateTime && tokens.contains('m'));
  return tokens.contains('m') ? isDate : plain == "General";
}

std::optional<std::string> compareFormats(const Formats& source, const Formats& result, bool plainFormats) {
  if (source.styles.size() != result.styles.size()) return "number of cell styles";
  std::set<std::pair<std::int64_t, std::int64_t>> equal;  // thousands of styles may share a long code
  for (std::size_t i = 0; i < source.styles.size(); ++i) {
    const auto before = source.styles[i];
    const auto after = result.styles[i];
    if (before.has_value() != after.has_value()) return "cell style " + std::to_string(i);
    if (!before || !equal.emplace(*before, *after).second) continue;
    const std::string* const code = source.code(*before);
    const std::string* const written = result.code(*after);
    const bool isKept = *before == *after && (code == nullptr) == (written == nullptr) &&
                        (code == nullptr || *code == *written);
    const bool isReplaced = plainFormats && written != nullptr && isPlainFormOf(*written, code);
    if (!isKept && !isReplaced) return "number format of cell style " + std::to_string(i);
  }
  return std::nullopt;
}

bool isExpected(const BookSheet& sheet, const std::vector<std::string>* names) {
  return sheet.isWorksheet && (names == nullptr || std::ranges::find(*names, sheet.name) != names->end());
}

}  // namespace

std::optional<std::string> difference(OOXML::ArchiveTrees& source, OOXML::ArchiveTrees& result,
                                      const Expectation& expectation) {
  Book expected(source);
  const Book written(result);
  std::erase_if(expected.sheets,
                [&](const BookSheet& sheet) { return !isExpected(sheet, expectation.sheets); });
  if (expected.sheets.size() != written.sheets.size()) return "number of sheets";
  if (expected.uses1904Dates != written.uses1904Dates) return "date system";
  if (auto found = compareStrings(source, expected.strings, result, written.strings)) return found;
  if (auto found = compareFormats(Formats(source, expected.styles), Formats(result, written.styles),
                                  expectation.plainFormats))
    return found;

  std::set<std::pair<const Entry*, const Entry*>> compared;  // sheets may share a part
  for (std::size_t i = 0; i < expected.sheets.size(); ++i) {
    const BookSheet& before = expected.sheets[i];
    const BookSheet& after = written.sheets[i];
    if (before.name != after.name || before.isHidden != after.isHidden)
      return "name or visibility of sheet " + before.name;
    if (!compared.emplace(before.part, after.part).second) continue;
    const auto found =
        compareSheets(source.root(*before.part), result.root(*after.part), !expectation.unmerge);
    if (found) return *found + " of sheet " + before.name;
  }
  return std::nullopt;
}

}  // namespace zelvo::CleaningReadBack
