#include "DocumentRuntime/Coding/JsonWriter.hpp"

#include <array>
#include <charconv>
#include <cmath>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/JsonNumber.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/ASCII.hpp"

namespace zelvo {
namespace {

bool needsEscape(char c) {
  return static_cast<unsigned char>(c) < 0x20 || c == '"' || c == '\\';
}

/// The first position from `start` on that needs an escape, or the text's size.
std::size_t findEscape(std::string_view text, std::size_t start) {
  while (start < text.size() && !needsEscape(text[start]))
    ++start;
  return start;
}

void appendEscape(std::string& out, char c) {
  switch (c) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\u00";
      const auto digits = ASCII::hexadecimal(static_cast<unsigned char>(c));
      out.append(digits.data(), digits.size());
  }
}

}  // namespace

void JsonWriter::separate() {
  if (needsComma_) text_ += ',';
  needsComma_ = true;
}

void JsonWriter::raw(std::string_view literal) {
  separate();
  text_ += literal;
}

void JsonWriter::open(char bracket) {
  separate();
  text_ += bracket;
  needsComma_ = false;
}

void JsonWriter::close(char bracket) {
  text_ += bracket;
  needsComma_ = true;
}

void JsonWriter::key(std::string_view name) {
  string(name);
  text_ += ':';
  needsComma_ = false;
}

void JsonWriter::integer(std::int64_t value) {
  std::array<char, 20> digits{};  // of -2^63
  const auto result = std::to_chars(digits.begin(), digits.end(), value);
  raw({digits.begin(), result.ptr});
}

void JsonWriter::number(double value) {
  if (!std::isfinite(value))
    throw DocumentError::validationFailed("JSON cannot represent a number that is not finite.");
  separate();
  JsonNumber::append(text_, value);
}

void JsonWriter::string(std::string_view text) {
  separate();
  text_ += '"';
  std::size_t start = 0;
  for (std::size_t end = findEscape(text, 0); end < text.size(); end = findEscape(text, start)) {
    text_.append(text, start, end - start);
    appendEscape(text_, text[end]);
    start = end + 1;
  }
  text_.append(text, start);
  text_ += '"';
}

void JsonWriter::bytes(ByteView bytes) {
  separate();
  text_ += '"';
  Base64::append(text_, bytes);
  text_ += '"';
}

}  // namespace zelvo
