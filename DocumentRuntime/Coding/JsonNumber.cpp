#include "DocumentRuntime/Coding/JsonNumber.hpp"

#include <charconv>
#include <cstddef>
#include <system_error>

#include "DocumentRuntime/Cells/NumberText.hpp"

namespace zelvo::JsonNumber {
namespace {

/// A decimal as 0.DIGITS × 10^point. The digits neither begin nor end with 0.
struct Decimal {
  bool negative = false;
  std::string_view digits;  ///< from the first to the last significant digit; may include the point
  std::int64_t count = 0;   ///< of the digits, without the point; zero for the number zero
  std::int64_t point = 0;
};

Decimal parse(std::string_view text) {
  Decimal decimal;
  decimal.negative = text.front() == '-';
  if (decimal.negative) text.remove_prefix(1);

  std::int64_t exponent = 0;
  const std::size_t mark = text.find_first_of("eE");
  if (mark != std::string_view::npos) {
    std::string_view digits = text.substr(mark + 1);
    if (digits.front() == '+') digits.remove_prefix(1);  // from_chars refuses it
    // In range: the reader refuses exponents past 32 bits.
    std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    text = text.substr(0, mark);
  }

  const std::size_t first = text.find_first_not_of("0.");
  if (first == std::string_view::npos) return decimal;
  const std::size_t last = text.find_last_not_of("0.");
  const std::size_t point = std::min(text.find('.'), text.size());
  decimal.digits = text.substr(first, last - first + 1);
  const bool pointInside = first < point && point < last;
  decimal.count = static_cast<std::int64_t>(decimal.digits.size()) - (pointInside ? 1 : 0);
  // Zeros between the point and the first digit count down; the point itself is no digit.
  const std::int64_t place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
  decimal.point = (first < point ? place : place + 1) + exponent;
  return decimal;
}

}  // namespace

std::optional<std::int64_t> integer(std::string_view text) {
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto plain = std::from_chars(text.data(), end, value);
  if (plain.ec == std::errc() && plain.ptr == end) return value;

  const Decimal decimal = parse(text);
  if (decimal.count == 0) return 0;
  constexpr std::int64_t maximumDigits = 19;  // of 2^63
  if (decimal.count > decimal.point || decimal.point > maximumDigits) return std::nullopt;
  std::string digits = decimal.negative ? "-" : "";
  for (const char c : decimal.digits) {
    if (c != '.') digits += c;
  }
  digits.append(static_cast<std::size_t>(decimal.point - decimal.count), '0');
  const auto whole = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (whole.ec != std::errc()) return std::nullopt;
  return value;
}

std::optional<double> number(std::string_view text) {
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc()) return value;
  // from_chars also reports underflow as out of range; the value is zero.
  const Decimal decimal = parse(text);
  if (decimal.point > 0) return std::nullopt;
  return decimal.negative ? -0.0 : 0.0;
}

void append(std::string& out, double value) {
  const std::string shortest = DoubleText::shortest(value);
  std::string_view text = shortest;
  if (text.ends_with(".0")) text.remove_suffix(2);
  out += text;
}

}  // namespace zelvo::JsonNumber
