#include "DocumentRuntime/Cleaning/PlainFormats.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

constexpr std::string_view dateCode = "yyyy-mm-dd";
constexpr std::string_view dateTimeCode = "yyyy-mm-dd hh:mm:ss";
constexpr std::string_view timeCode = "h:mm:ss";

constexpr char elapsed = 'E';

/// The position after the group that starts at `start`.
std::size_t groupEnd(std::string_view code, std::size_t start, char closing) {
  const std::size_t end = code.find(closing, start + 1);
  return end == std::string_view::npos ? code.size() : end + 1;
}

/// Whether the brackets hold an elapsed time, in hours, minutes or seconds: "[h]", "[mm]".
bool isElapsed(std::string_view brackets) {
  const std::string_view unit = brackets.substr(1, brackets.size() - 2);
  return !unit.empty() && std::string_view("hms").find(unit.front()) != std::string_view::npos &&
         unit.find_first_not_of(unit.front()) == std::string_view::npos;
}

/// The date and time tokens of a code's first section, one letter each: y m d h s, and `elapsed`. Skips
/// quoted texts, other brackets, escaped characters and "AM/PM".
std::string tokensOf(const std::string& code) {
  std::string tokens;
  for (std::size_t i = 0; i < code.size() && code[i] != ';';) {
    const std::string_view rest = std::string_view(code).substr(i);
    const char c = code[i];
    if (c == '"') {
      i = groupEnd(code, i, '"');
    } else if (c == '[') {
      const std::size_t end = groupEnd(code, i, ']');
      if (isElapsed(rest.substr(0, end - i))) tokens += elapsed;
      i = end;
    } else if (c == '\\' || c == '_' || c == '*') {  // literal, space of that width, repeated
      i += 2;
    } else if (rest.starts_with("am/pm")) {
      i += 5;
    } else if (rest.starts_with("a/p")) {
      i += 3;
    } else if (std::string_view("ymdhs").find(c) != std::string_view::npos) {
      tokens += c;
      i = std::min(code.find_first_not_of(c, i), code.size());
    } else {
      ++i;
    }
  }
  return tokens;
}

bool isShown(std::string_view code) {
  using namespace DocumentNumberFormat;
  return code == generalCode || code == "@" || isDate(code) || isTime(code) || numeric(code);
}

}  // namespace

std::optional<std::string_view> plainCode(std::string_view code) {
  if (isShown(code)) return std::nullopt;
  const std::string tokens = tokensOf(Unicode::lowercased(code));
  bool isDate = false;
  bool isTime = false;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i] == elapsed) return std::nullopt;
    const bool isMinutes = tokens[i] == 'm' && ((i > 0 && tokens[i - 1] == 'h') ||
                                                (i + 1 < tokens.size() && tokens[i + 1] == 's'));
    (tokens[i] == 'h' || tokens[i] == 's' || isMinutes ? isTime : isDate) = true;
  }
  if (isDate) return isTime ? dateTimeCode : dateCode;
  return isTime ? timeCode : generalCode;
}

std::optional<std::string_view> plainCodeOfBuiltin(std::int64_t id) {
  // Dates and times of East Asian languages. 34, 35, 55 and 56 are times in one language and dates in
  // another.
  if ((id >= 27 && id <= 31) || id == 36 || (id >= 50 && id <= 54) || id == 57 || id == 58) return dateCode;
  if (id == 32 || id == 33) return timeCode;
  if (id == 34 || id == 35 || id == 55 || id == 56) return std::nullopt;
  return generalCode;
}

std::size_t PlainFormats::addFormat(std::string code) {
  formats_.push_back({.kind = std::string(kindName(CleaningKind::numberFormats)),
                      .code = std::move(code),
                      .sheets = std::vector<SheetCount>()});
  return formats_.size() - 1;
}

void PlainFormats::countCell(std::int64_t style) {
  if (std::cmp_greater_equal(style, formatOfStyle_.size())) return;
  const auto format = formatOfStyle_[static_cast<std::size_t>(style)];
  if (!format) return;
  ChangedContent& counted = formats_[*format];
  ++counted.count;
  if (counted.sheets->empty() || counted.sheets->back().sheet != sheet_)
    counted.sheets->push_back({.sheet = sheet_});
  ++counted.sheets->back().count;
}

void PlainFormats::report(Findings& findings) {
  for (ChangedContent& format : formats_) {
    if (format.count > 0) findings.addFormat(std::move(format));
  }
}

}  // namespace zelvo::Cleaning
