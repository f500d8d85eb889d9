#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

std::string encoded(char32_t scalar) {
  const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
  if (scalar < 0x80) return {byte(scalar)};
  if (scalar < 0x800) return {byte(0xC0 | scalar >> 6), byte(0x80 | (scalar & 0x3F))};
  if (scalar < 0x10000) {
    return {byte(0xE0 | scalar >> 12), byte(0x80 | (scalar >> 6 & 0x3F)), byte(0x80 | (scalar & 0x3F))};
  }
  return {byte(0xF0 | scalar >> 18), byte(0x80 | (scalar >> 12 & 0x3F)), byte(0x80 | (scalar >> 6 & 0x3F)),
          byte(0x80 | (scalar & 0x3F))};
}

bool isScalar(char32_t scalar) {
  return scalar < 0x110000 && (scalar < 0xD800 || scalar > 0xDFFF);
}

/// Decodes every sequence naively and asks whether encoding gives the same bytes back.
bool isValidByReference(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (length > bytes.size()) return false;
    char32_t scalar = length == 1 ? lead : lead & (0xFFU >> (length + 1));
    for (const char next : bytes.substr(1, length - 1))
      scalar = scalar << 6 | (next & 0x3F);
    if (!isScalar(scalar) || encoded(scalar) != bytes.substr(0, length)) return false;
    bytes.remove_prefix(length);
  }
  return true;
}

TEST(UnicodeScalars, EveryScalarIsValidAndDecodes) {
  for (char32_t scalar = 0; scalar < 0x110000; ++scalar) {
    if (!isScalar(scalar)) continue;
    const std::string text = encoded(scalar);
    std::size_t position = 0;
    ASSERT_TRUE(Unicode::isValid(text)) << std::hex << static_cast<unsigned>(scalar);
    ASSERT_EQ(Unicode::nextScalar(text, position), scalar);
    ASSERT_EQ(position, text.size());
    std::string appended;
    Unicode::append(appended, scalar);
    ASSERT_EQ(appended, text);
    ASSERT_EQ(Unicode::trimmed(std::string(text).append("x").append(text)) == "x",
              u_isUWhiteSpace(static_cast<UChar32>(scalar)) != 0)
        << std::hex << static_cast<unsigned>(scalar);
  }
}

TEST(UnicodeScalars, ValidityAgreesWithReference) {
  // Bytes from the edges of the allowed ranges, so that near misses are common.
  constexpr std::string_view edges =
      "aa\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5\xFF";
  std::size_t valid = 0;
  const std::size_t count = edges.size();
  for (std::size_t i = 0; i < count * count * count * count; ++i) {
    const std::string bytes = {edges[i % count], edges[i / count % count], edges[i / count / count % count],
                               edges[i / count / count / count]};
    for (const std::string_view part : {std::string_view(bytes), std::string_view(bytes).substr(1)}) {
      ASSERT_EQ(Unicode::isValid(part), isValidByReference(part)) << ::testing::PrintToString(part);
      valid += Unicode::isValid(part) ? 1 : 0;
    }
  }
  EXPECT_GT(valid, 500U);

  // Valid text of every alignment to the words in which ASCII is skipped, spoilt at every place.
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    std::string text(random() % 70, 'a');
    text += encoded(random() % 2 == 0 ? 0xE9 : 0x1F600) + std::string(random() % 70, 'b');
    ASSERT_TRUE(Unicode::isValid(text));
    for (std::size_t at = 0; at < text.size(); ++at) {
      std::string spoilt = text;
      spoilt[at] = static_cast<char>(random());
      ASSERT_EQ(Unicode::isValid(spoilt), isValidByReference(spoilt)) << ::testing::PrintToString(spoilt);
      const std::string_view cut = std::string_view(text).substr(0, at);  // what it lacks stands behind it
      ASSERT_EQ(Unicode::isValid(cut), isValidByReference(cut)) << ::testing::PrintToString(cut);
    }
  }
}

TEST(UnicodeScalars, Trimming) {
  EXPECT_EQ(Unicode::trimmed(""), "");
  EXPECT_EQ(Unicode::trimmed(" \t\r\n\u3000"), "");
  EXPECT_EQ(Unicode::trimmed("\u00A0a \u2003 é\u2028\n"), "a \u2003 é");
  EXPECT_EQ(Unicode::trimmed("\u200Ba\uFEFF"), "\u200Ba\uFEFF");
}

TEST(UnicodeScalars, Lines) {
  using Lines = std::vector<std::string_view>;
  EXPECT_EQ(Unicode::lines(""), Lines({""}));
  EXPECT_EQ(Unicode::lines("a\n"), Lines({"a", ""}));
  EXPECT_EQ(Unicode::lines("a\r\n\rb\n\rc"), Lines({"a", "", "b", "", "c"}));
  EXPECT_EQ(Unicode::lines("a\vb\fc\u0085d\u2028e\u2029f"), Lines({"a", "b", "c", "d", "e", "f"}));
  EXPECT_EQ(Unicode::lines("\u0084\u00A0\u2027\u202A\x1C"), Lines({"\u0084\u00A0\u2027\u202A\x1C"}));
}

}  // namespace
}  // namespace zelvo
