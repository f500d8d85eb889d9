#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// The character classes of XML 1.0, fifth edition.
namespace zelvo::OOXML {

/// What a byte may be without a closer look. Bytes from 0x80 on belong to longer scalars, all of which may
/// stand in text, but for two that begin with 0xEF.
enum ByteClass : std::uint8_t {
  plainInText = 1,   ///< stands for itself in character data
  plainInValue = 2,  ///< stands for itself in an attribute value, whatever its quotes
  nameStart = 4,
  nameRest = 8,
  whiteSpace = 16,
};

inline constexpr std::array<std::uint8_t, 256> byteClasses = [] {
  std::array<std::uint8_t, 256> classes{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    std::uint8_t& found = classes[byte];
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool isSpace = c == ' ' || c == '\t' || c == '\n' || c == '\r';
    if ((byte >= 0x20 || isSpace) && byte != 0xEF && c != '<' && c != '&') {
      if (c != ']' && c != '\r') found |= plainInText;
      if (c != '"' && c != '\'' && (c == ' ' || !isSpace)) found |= plainInValue;
    }
    if (isLetter || c == '_' || c == ':') found |= nameStart | nameRest;
    if ((c >= '0' && c <= '9') || c == '-' || c == '.') found |= nameRest;
    if (isSpace) found |= whiteSpace;
  }
  return classes;
}();

inline bool isOf(std::uint8_t classes, char byte) {
  return (byteClasses[static_cast<unsigned char>(byte)] & classes) != 0;
}

/// Whether the scalar, from U+0080 on, may begin or go on a name.
bool isNameScalar(char32_t scalar, bool first);

/// Whether a character reference may stand for the scalar.
bool isReferable(char32_t scalar);

/// The two scalars in valid UTF-8 that no document may hold, U+FFFE and U+FFFF.
inline bool startsWithNoncharacter(std::string_view text) {
  return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

}  // namespace zelvo::OOXML
