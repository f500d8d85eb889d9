#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

namespace zelvo::OOXML {

inline void appendPiece(std::string& out, std::string_view text) {
  out += text;
}

/// In decimal, whatever the locale.
template <std::integral Integer>
requires(!std::same_as<Integer, char> && !std::same_as<Integer, bool>) void appendPiece(std::string& out,
                                                                                        Integer value) {
  char digits[24];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// Writes XML by appending: fragments as they are (escape what comes from outside), integers in decimal.
template <typename... Pieces>
void append(std::string& out, const Pieces&... pieces) {
  (appendPiece(out, pieces), ...);
}

}  // namespace zelvo::OOXML
