#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"

#include <cstddef>

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

std::string ReadBackTexts::seriesName(const ResearchSpreadsheet::Column& column) {
  if (!column.unit || column.unit->empty()) return column.name;
  return column.name + " (" + *column.unit + ")";
}

}  // namespace zelvo
