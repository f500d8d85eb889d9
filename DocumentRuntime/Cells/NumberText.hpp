#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// The decimal texts in which workbooks store numbers.
namespace zelvo::NumberText {

/// Longest number text that is read, in characters.
inline constexpr std::size_t maximumCharacters = 64;

/// Whether the text is at most 64 characters of sign, digits, one point and exponent, and a finite number.
bool isValid(std::string_view text);

/// The nearest double of a text that `isValid` accepts (underflow gives zero); none for any other text.
std::optional<double> value(std::string_view text);

}  // namespace zelvo::NumberText
