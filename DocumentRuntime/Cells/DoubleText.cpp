#include "DocumentRuntime/Cells/DoubleText.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace zelvo::DoubleText {

std::string shortest(double value) {
  constexpr double smallestFixed = 1e-4;
  constexpr double largestFixed = 0x1p54;  // beyond, adjacent doubles differ by more than 2
  const double magnitude = std::fabs(value);
  const bool isFixed = magnitude == 0 || (magnitude >= smallestFixed && magnitude <= largestFixed);
  // 17 significant digits, sign, point, and either "0.000" before them or an exponent of five characters
  // after them.
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.begin(), buffer.end(), value,
                                    isFixed ? std::chars_format::fixed : std::chars_format::scientific);
  std::string text(buffer.begin(), result.ptr);
  if (isFixed && text.find('.') == std::string::npos) text += ".0";
  return text;
}

}  // namespace zelvo::DoubleText
