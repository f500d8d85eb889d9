#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Number texts as workbooks store them.
namespace zelvo::NumberText {

/// Longest number text that is read, in characters.
inline constexpr std::size_t maximumCharacters = 64;

/// A parsed number text: ± integer.fraction × 10^exponent. The digits are views into the text. At most one of
/// the two is empty.
struct Parts {
  bool negative = false;
  std::string_view integer;
  std::string_view fraction;
  std::int64_t exponent = 0;  ///< clamped to ±`exponentCap`

  static constexpr std::int64_t exponentCap = 1'000'000;
};

/// Parses a text of at most 64 characters: sign, digits, at most one point, exponent. Returns nullopt for any
/// other text. The number may be too large for a double.
std::optional<Parts> parts(std::string_view text);

/// Whether the text has `parts` and is finite as a double.
bool isValid(std::string_view text);

/// The nearest double of a text that `isValid` accepts (zero on underflow). Returns nullopt for any other
/// text.
std::optional<double> value(std::string_view text);

}  // namespace zelvo::NumberText

/// Decimal texts of doubles.
namespace zelvo::DoubleText {

/// The shortest text that reads back as the same double, whole values with ".0": in fixed notation from 1e-4
/// up to 2^54 in magnitude ("2024.0", "0.25", "-0.0"), scientific outside ("1e-05", "1e+17"). `value` is
/// finite.
std::string shortest(double value);

}  // namespace zelvo::DoubleText
