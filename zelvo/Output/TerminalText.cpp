#include "zelvo/Output/TerminalText.hpp"

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdio>

#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

struct ScalarSpan {
  char32_t first;
  char32_t last;
};

constexpr std::array<ScalarSpan, 7> dangerous = {{
    {0x0000, 0x001F},  // C0 controls
    {0x007F, 0x009F},  // delete, and the C1 controls: U+009B begins a command as ESC [ does
    {0x061C, 0x061C},  // marks of writing direction, here and below: they reorder the shown text
    {0x200E, 0x200F},
    {0x2028, 0x2029},  // line and paragraph separator
    {0x202A, 0x202E},
    {0x2066, 0x2069},
}};

bool isDangerous(char32_t scalar) {
  return std::any_of(dangerous.begin(), dangerous.end(),
                     [&](ScalarSpan span) { return span.first <= scalar && scalar <= span.last; });
}

bool isPrintableASCII(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return ' ' <= c && c <= '~'; });
}

/// `escape` is a printf format for the scalar value. Every dangerous one has at most four hexadecimal digits.
template <std::predicate<char32_t> IsEscaped>
std::string withEscapes(std::string_view bytes, const char* escape, IsEscaped isEscaped) {
  if (isPrintableASCII(bytes)) return std::string(bytes);
  const std::string text = wellFormed(bytes);
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t start = position;
    const char32_t scalar = Unicode::nextScalar(text, position);
    if (isEscaped(scalar)) {
      std::array<char, 16> written = {};
      static_cast<void>(std::snprintf(written.data(), written.size(), escape, static_cast<unsigned>(scalar)));
      shown += written.data();
    } else {
      shown.append(text, start, position - start);
    }
  }
  return shown;
}

/// The length of the well-formed character at the start; 0 if there is none.
std::size_t leadingCharacterBytes(std::string_view bytes) {
  constexpr std::size_t longest = 4;
  for (std::size_t count = 1; count <= std::min(longest, bytes.size()); ++count) {
    if (Unicode::isValid(bytes.substr(0, count))) return count;
  }
  return 0;
}

}  // namespace

std::string wellFormed(std::string_view bytes) {
  if (Unicode::isValid(bytes)) return std::string(bytes);
  std::string text;
  while (!bytes.empty()) {
    const std::size_t count = leadingCharacterBytes(bytes);
    text += count > 0 ? bytes.substr(0, count) : "\uFFFD";
    bytes.remove_prefix(std::max<std::size_t>(count, 1));
  }
  return text;
}

std::string printable(std::string_view bytes) {
  return withEscapes(bytes, "\\u{%X}", isDangerous);
}

std::string jsonForTerminal(std::string_view json) {
  return withEscapes(json, "\\u%04x", [](char32_t scalar) { return scalar != '\n' && isDangerous(scalar); });
}

}  // namespace zelvo
