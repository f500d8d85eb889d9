#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"

#include <algorithm>
#include <cstddef>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

bool isLineBreak(char32_t scalar) {
  return (scalar >= U'\n' && scalar <= U'\r') || scalar == U'\u0085' || scalar == U'\u2028' ||
         scalar == U'\u2029';
}

/// Drops control characters, of which only tab, line feed and carriage return could be written, and the two
/// other scalars that XML does not allow.
void appendKept(std::string& text, char32_t scalar) {
  if (scalar >= U' ' && scalar != U'\uFFFE' && scalar != U'\uFFFF') Unicode::append(text, scalar);
}

}  // namespace

std::string ReadBackTexts::onSlide(std::string_view text) {
  std::string wanted;
  char32_t previous = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t scalar = Unicode::nextScalar(text, at);
    const bool isSecondHalf = scalar == U'\n' && previous == U'\r';
    if (!isSecondHalf) appendKept(wanted, isLineBreak(scalar) || scalar == U'\t' ? U' ' : scalar);
    previous = scalar;
  }
  return wanted;
}

std::string ReadBackTexts::inChart(std::string_view text) {
  std::string wanted;
  for (std::size_t at = 0; at < text.size();)
    appendKept(wanted, Unicode::nextScalar(text, at));
  return wanted;
}

std::string ReadBackTexts::observation(const std::optional<std::chrono::sys_seconds>& time) {
  if (!time) return "observation time not recorded";
  // From the ISO 8601 text, 2024-04-02T07:30:00Z: its fields have fixed places after the year.
  const std::string whole = SerialDate::isoDateTimeText(*time);
  const std::string year = whole.substr(0, whole.find('-', 1));
  const std::string text = whole.substr(year.size());
  const std::string months =
      "January  February March    April    May      June     July     August   SeptemberOctober  November "
      "December ";
  constexpr std::size_t monthWidth = 9;
  const std::size_t month = std::stoul(text.substr(1, 2)) - 1;
  std::string name = months.substr(month * monthWidth, monthWidth);
  name.resize(std::min(name.find(' '), name.size()));
  return "observed " + std::to_string(std::stoul(text.substr(4, 2))) + " " + name + " " + year + ", " +
         text.substr(7, 5) + " UTC";
}

std::string ReadBackTexts::seriesName(const ResearchSpreadsheet::Column& column) {
  if (!column.unit || column.unit->empty()) return column.name;
  return column.name + " (" + *column.unit + ")";
}

}  // namespace zelvo
