// The functions of Unicode.hpp that work on bytes and scalars, without the Unicode library.

#include <cstdint>
#include <cstring>

#include "Text/Unicode.hpp"

namespace zelvo::Unicode {
namespace {

constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;

std::uint8_t byteAt(const char* at) {
  return static_cast<std::uint8_t>(*at);
}

bool isContinuation(std::uint8_t byte) {
  return (byte & 0xC0) == 0x80;
}

std::uint64_t wordAt(const char* at) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  return word;
}

/// The first byte of 0x80 or above, or `end`. Most text of documents is ASCII, so it tests whole words.
const char* skipASCII(const char* at, const char* end) {
  while (end - at >= 32) {
    if (((wordAt(at) | wordAt(at + 8) | wordAt(at + 16) | wordAt(at + 24)) & highBits) != 0) break;
    at += 32;
  }
  while (end - at >= 8 && (wordAt(at) & highBits) == 0)
    at += 8;
  while (at != end && byteAt(at) < 0x80)
    ++at;
  return at;
}

/// The length of the well-formed sequence of two to four bytes at `at`, or 0.
std::ptrdiff_t sequenceLength(const char* at, const char* end) {
  const std::uint8_t lead = byteAt(at);
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::ptrdiff_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (end - at < length) return 0;
  // Only the second byte can make the sequence overlong, a surrogate, or too large.
  const std::uint8_t lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const std::uint8_t highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (byteAt(at + 1) < lowest || byteAt(at + 1) > highest) return 0;
  if (length > 2 && !isContinuation(byteAt(at + 2))) return 0;
  if (length > 3 && !isContinuation(byteAt(at + 3))) return 0;
  return length;
}

/// The characters with the property White_Space.
bool isWhiteSpace(char32_t scalar) {
  return (scalar >= 0x09 && scalar <= 0x0D) || scalar == 0x20 || scalar == 0x85 || scalar == 0xA0 ||
         scalar == 0x1680 || (scalar >= 0x2000 && scalar <= 0x200A) || scalar == 0x2028 || scalar == 0x2029 ||
         scalar == 0x202F || scalar == 0x205F || scalar == 0x3000;
}

/// The offset of the last scalar of a non-empty text.
std::size_t lastScalarStart(std::string_view text) {
  std::size_t start = text.size() - 1;
  while (isContinuation(static_cast<std::uint8_t>(text[start])))
    --start;
  return start;
}

/// The length in bytes of the line break at the start of `rest`, or 0.
std::size_t lineBreakLength(std::string_view rest) {
  switch (rest.front()) {
    case '\r':
      return rest.starts_with("\r\n") ? 2 : 1;
    case '\n':
    case '\v':
    case '\f':
      return 1;
    case '\xC2':
      return rest.starts_with("\u0085") ? 2 : 0;
    case '\xE2':
      return rest.starts_with("\u2028") || rest.starts_with("\u2029") ? 3 : 0;
    default:
      return 0;
  }
}

}  // namespace

bool isValid(std::string_view bytes) {
  const char* at = bytes.data();
  const char* const end = at + bytes.size();
  while ((at = skipASCII(at, end)) != end) {
    do {
      const std::ptrdiff_t length = sequenceLength(at, end);
      if (length == 0) return false;
      at += length;
    } while (at != end && byteAt(at) >= 0x80);
  }
  return true;
}

bool isASCII(std::string_view bytes) {
  const char* const end = bytes.data() + bytes.size();
  return skipASCII(bytes.data(), end) == end;
}

char32_t nextScalar(std::string_view text, std::size_t& position) {
  const auto lead = static_cast<std::uint8_t>(text[position++]);
  if (lead < 0x80) return lead;
  const int continuations = lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
  char32_t scalar = lead & (0x3F >> continuations);
  for (int i = 0; i < continuations; ++i) {
    scalar = scalar << 6 | (static_cast<std::uint8_t>(text[position++]) & 0x3F);
  }
  return scalar;
}

void append(std::string& text, char32_t scalar) {
  if (scalar < 0x80) {
    text += static_cast<char>(scalar);
    return;
  }
  const int continuations = scalar < 0x800 ? 1 : scalar < 0x10000 ? 2 : 3;
  const char32_t leadMark = 0xF00 >> (continuations + 1) & 0xFF;  // as many ones as there are bytes
  text += static_cast<char>(leadMark | scalar >> (6 * continuations));
  for (int i = continuations - 1; i >= 0; --i)
    text += static_cast<char>(0x80 | (scalar >> (6 * i) & 0x3F));
}

std::string_view trimmed(std::string_view text) {
  std::size_t start = 0;
  for (std::size_t next = 0; start < text.size() && isWhiteSpace(nextScalar(text, next));)
    start = next;
  text.remove_prefix(start);
  while (!text.empty()) {
    const std::size_t last = lastScalarStart(text);
    std::size_t next = last;
    if (!isWhiteSpace(nextScalar(text, next))) break;
    text = text.substr(0, last);
  }
  return text;
}

std::vector<std::string_view> lines(std::string_view text) {
  std::vector<std::string_view> found;
  std::size_t start = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = lineBreakLength(text.substr(at));
    if (length == 0) {
      ++at;
      continue;
    }
    found.push_back(text.substr(start, at - start));
    at += length;
    start = at;
  }
  found.push_back(text.substr(start));
  return found;
}

}  // namespace zelvo::Unicode
