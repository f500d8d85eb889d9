#pragma once

#include <string_view>

/// Character classes of ASCII, whatever the locale, and prefixes of texts.
namespace zelvo::ASCII {

inline constexpr std::string_view hexDigits = "0123456789abcdef";

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The lower case of a letter of ASCII; any other byte unchanged.
constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Removes `prefix` from the start of `text`. Returns false if the text does not start with it.
constexpr bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

}  // namespace zelvo::ASCII
