#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Text/ASCII.hpp"

/// The characters that XML 1.0, fifth edition, allows in a document.
namespace zelvo::OOXML {

/// Whether a document may contain the scalar, literally or as a character reference.
constexpr bool isAllowed(char32_t scalar) {
  if (scalar < 0x20) return scalar == '\t' || scalar == '\n' || scalar == '\r';
  const bool isSurrogate = scalar >= 0xD800 && scalar <= 0xDFFF;
  return !isSurrogate && scalar != 0xFFFE && scalar != 0xFFFF && scalar <= 0x10FFFF;
}

/// Above the control characters, valid UTF-8 has only two scalars that are not allowed, U+FFFE and U+FFFF.
/// Both have three bytes, the first of which is this one.
inline constexpr char noncharacterStart = '\xEF';
inline constexpr std::size_t noncharacterBytes = 3;
inline bool startsWithNoncharacter(std::string_view text) {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

/// `text`, which must be valid UTF-8, without the characters that are not allowed.
std::string withoutForbidden(std::string_view text);

/// Classes that depend on a byte alone. Bytes from 0x80 on belong to longer scalars, all of which are allowed
/// in text, except the two noncharacters.
enum ByteClass : std::uint8_t {
  plainInText = 1,   ///< copied unchanged in character data
  plainInValue = 2,  ///< copied unchanged in an attribute value, whichever its quotes
  nameStart = 4,
  nameRest = 8,
  whiteSpace = 16,
};

inline constexpr std::array<std::uint8_t, 256> byteClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    std::uint8_t& found = classes[byte];
    const bool isSpace = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if (isAllowed(byte) && c != noncharacterStart && c != '<' && c != '&') {
      if (c != ']' && c != '\r') found |= plainInText;
      if (c != '"' && c != '\'' && (c == ' ' || !isSpace)) found |= plainInValue;
    }
    if (ASCII::isLetter(c) || c == '_' || c == ':') found |= nameStart | nameRest;
    if (ASCII::isDigit(c) || c == '-' || c == '.') found |= nameRest;
    if (isSpace) found |= whiteSpace;
  }
  return classes;
}();

inline bool isOf(std::uint8_t classes, char byte) {
  return (byteClasses[static_cast<unsigned char>(byte)] & classes) != 0;
}

/// Whether a name may begin with or contain the scalar, which is U+0080 or above.
bool isNameScalar(char32_t scalar, bool first);

}  // namespace zelvo::OOXML
