#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// The decimal texts in which workbooks store numbers.
namespace zelvo::NumberText {

/// Longest number text that is read, in characters.
inline constexpr std::size_t maximumCharacters = 64;

/// A number text taken apart: ± integer.fraction × 10^exponent. The digits are views into the text; one of
/// them may be empty, never both.
struct Parts {
  bool negative = false;
  std::string_view integer;
  std::string_view fraction;
  std::int64_t exponent = 0;  ///< within ±`exponentCap`, where larger ones end up

  static constexpr std::int64_t exponentCap = 1'000'000;
};

/// The parts of a text of at most 64 characters of sign, digits, one point and exponent; none for any other
/// text. The number may be too large for a double.
std::optional<Parts> parts(std::string_view text);

/// Whether the text has `parts` and is finite as a double.
bool isValid(std::string_view text);

/// The nearest double of a text that `isValid` accepts (underflow gives zero); none for any other text.
std::optional<double> value(std::string_view text);

}  // namespace zelvo::NumberText
