#include "DocumentRuntime/Cells/NumberText.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "Text/ASCII.hpp"

namespace zelvo::NumberText {
namespace {

using ASCII::isDigit;

bool take(std::string_view& rest, char character) {
  return ASCII::takePrefix(rest, {&character, 1});
}

/// Takes an optional sign. Returns true for a minus.
bool takeMinus(std::string_view& rest) {
  if (take(rest, '-')) return true;
  take(rest, '+');
  return false;
}

std::string_view takeDigits(std::string_view& rest) {
  const auto end = std::find_if_not(rest.begin(), rest.end(), isDigit);
  const auto digits = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
  rest.remove_prefix(digits.size());
  return digits;
}

std::int64_t exponentOf(std::string_view digits, bool negative) {
  std::int64_t exponent = 0;
  for (const char digit : digits)
    exponent = std::min(exponent * 10 + (digit - '0'), Parts::exponentCap);
  return negative ? -exponent : exponent;
}

}  // namespace

std::optional<Parts> parts(std::string_view text) {
  if (text.size() > maximumCharacters)
    return std::nullopt;  // only ASCII passes below, so bytes are characters
  std::string_view rest = text;
  Parts parts;
  parts.negative = takeMinus(rest);
  parts.integer = takeDigits(rest);
  if (take(rest, '.')) parts.fraction = takeDigits(rest);
  if (parts.integer.empty() && parts.fraction.empty()) return std::nullopt;
  if (take(rest, 'e') || take(rest, 'E')) {
    const bool negative = takeMinus(rest);
    const std::string_view digits = takeDigits(rest);
    if (digits.empty()) return std::nullopt;
    parts.exponent = exponentOf(digits, negative);
  }
  if (!rest.empty()) return std::nullopt;
  return parts;
}

bool isValid(std::string_view text) {
  return value(text).has_value();
}

std::optional<double> value(std::string_view text) {
  const auto number = parts(text);
  if (!number) return std::nullopt;
  if (text.starts_with('+')) text.remove_prefix(1);  // from_chars takes only a minus
  double result = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), result);
  if (failure == std::errc()) return result;
  // Out of range means too large or too close to zero. Doubles reach 300 powers of ten in both directions and
  // 64 digits change the magnitude by fewer, so the exponent's sign decides which.
  if (number->exponent > 0) return std::nullopt;
  return 0.0;
}

}  // namespace zelvo::NumberText

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
