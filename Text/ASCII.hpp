#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Classes of ASCII characters, independent of the locale, and prefixes of texts. The classes are false for
/// every byte outside ASCII.
namespace zelvo::ASCII {

inline constexpr std::string_view decimalDigits = "0123456789";
inline constexpr std::string_view hexDigits = "0123456789abcdef";

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool isLowerCase(char c) {
  return c >= 'a' && c <= 'z';
}

constexpr bool isUpperCase(char c) {
  return c >= 'A' && c <= 'Z';
}

constexpr bool isLetter(char c) {
  return isLowerCase(c) || isUpperCase(c);
}

/// The lower case of a letter of ASCII; any other byte unchanged.
constexpr char lowercased(char c) {
  return isUpperCase(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The text with the letters A to Z in lower case; all other bytes unchanged.
inline std::string lowercased(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char c) { return lowercased(c); });
  return result;
}

/// The value of a hexadecimal digit of either case; nullopt for any other character.
constexpr std::optional<unsigned> hexValue(char c) {
  if (isDigit(c)) return static_cast<unsigned>(c - '0');
  const char lower = lowercased(c);
  if (lower >= 'a' && lower <= 'f') return static_cast<unsigned>(lower - 'a') + 10;
  return std::nullopt;
}

/// The two lower-case hexadecimal digits of a byte.
constexpr std::array<char, 2> hexadecimal(unsigned char byte) {
  return {hexDigits[byte >> 4U], hexDigits[byte & 0xFU]};
}

/// The digits of an integer with a comma before every three: "11,672".
inline std::string grouped(std::string digits) {
  for (std::size_t behind = 3; behind < digits.size(); behind += 4)
    digits.insert(digits.size() - behind, 1, ',');
  return digits;
}

/// Removes `prefix` from the start of `text`. Returns false if the text does not start with it.
constexpr bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

}  // namespace zelvo::ASCII
