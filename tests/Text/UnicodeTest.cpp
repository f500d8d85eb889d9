// Owns Text/Unicode: every scalar, every edge of well-formed UTF-8, and agreement with ICU's own functions.
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "Support/Cases.hpp"
#include "Support/Texts.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using testing::repeated;

std::string utf8(const icu::UnicodeString& text) {
  std::string result;
  return text.toUTF8String(result);
}

bool isValidByICU(std::string_view bytes) {
  UErrorCode status = U_ZERO_ERROR;
  std::int32_t length = 0;
  u_strFromUTF8(nullptr, 0, &length, bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
  return status != U_INVALID_CHAR_FOUND;
}

TEST(Unicode, EveryScalarIsValidAndDecodes) {
  for (UChar32 scalar = 0; scalar < 0x110000; ++scalar) {
    if (U_IS_SURROGATE(scalar)) continue;
    const std::string text = utf8(scalar);
    std::size_t position = 0;
    ASSERT_TRUE(Unicode::isValid(text)) << scalar;
    ASSERT_EQ(Unicode::nextScalar(text, position), static_cast<char32_t>(scalar));
    ASSERT_EQ(position, text.size());
    std::string appended;
    Unicode::append(appended, static_cast<char32_t>(scalar));
    ASSERT_EQ(appended, text);
    const bool isSpace = u_isUWhiteSpace(scalar) != 0;
    const std::string inner = "x" + text + "x";
    ASSERT_EQ(Unicode::trimmed(text + text + inner + text) == inner, isSpace) << scalar;
    ASSERT_EQ(Unicode::trimmed(text) == "", isSpace) << scalar;
  }
}

TEST(Unicode, ValidityAgreesWithICU) {
  // Bytes from the edges of the allowed ranges, at every alignment to the words in which ASCII is skipped.
  constexpr std::string_view edges =
      "a\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xED\xEF\xF0\xF4\xF5\xFF";
  std::mt19937 random(1);
  for (int round = 0; round < 300'000; ++round) {
    std::string bytes(random() % 32, 'a');
    for (auto length = random() % 5; length > 0; --length)
      bytes += edges[random() % edges.size()];
    bytes.append(random() % 32, 'b');
    const std::string_view cut = std::string_view(bytes).substr(0, random() % (bytes.size() + 1));
    ASSERT_EQ(Unicode::isValid(bytes), isValidByICU(bytes)) << ::testing::PrintToString(bytes);
    ASSERT_EQ(Unicode::isValid(cut), isValidByICU(cut)) << ::testing::PrintToString(cut);
  }
}

void expectCharacters(const std::string& text, std::size_t total) {
  ASSERT_EQ(Unicode::characterCount(text), total) << text;
  for (std::size_t count = 0; count <= total; ++count) {
    ASSERT_EQ(Unicode::characterCount(Unicode::prefix(text, count)), count) << text;
    ASSERT_EQ(Unicode::exceeds(text, count), count < total) << text << ' ' << count;
  }
  ASSERT_EQ(Unicode::prefix(text, total), text);
  ASSERT_EQ(Unicode::prefix(text, SIZE_MAX), text);
  ASSERT_FALSE(Unicode::exceeds(text, SIZE_MAX));
}

TEST(Unicode, Characters) {
  // Combining marks, emoji joined and modified, keycaps, flags, one of them half, Hangul composed and not,
  // spacing marks, a prepended one; and line breaks, to which nothing joins.
  for (const std::string& character : testing::words(
           "a é e\u0301 o\u0323\u0302 \U0001F469\u200D\U0001F680 \u2764\uFE0F\u200D\U0001F525 "
           "\U0001F44D\U0001F3FD "
           "1\uFE0F\u20E3 \U0001F1F3\U0001F1F4 \U0001F1F8 \uD55C \u1112\u1161\u11AB \u1100\u1100\u1161 "
           "\u0BA8\u0BBF \u0E01\u0E33 \u06001 ␍␊ ␍ ␊")) {
    for (std::size_t letters = 0; letters < 30; ++letters)
      expectCharacters(std::string(letters, 'b') + character + "c" + character + "d", letters + 4);
    EXPECT_EQ(Unicode::prefix(character + "b", 1), character);
  }
  expectCharacters("\n\u0301", 2);
}

/// Texts in which letters that change case, and what composes and reorders, are common.
void expectAgreementWithICU(unsigned seed) {
  constexpr std::u32string_view alphabet =
      U"\r\nazAZ@[`{"
      U"\u0301\u0316\u0323\u0302\u0308\u0344\u0345\u00E9\u1E69\u212B\u0F71\u0F72\u0F73\u0F75\u0F81"
      U"\u09C7\u09BE\u0DD9\u0DCF\u0DCA\u1100\u1161\u11A8\uAC00\u304B\u3099\u2ADC\uFB1D\U0001D160\U0001D165"
      U"\U00011131\U00011127ßẞİıΣŉ\u0390ﬃ";
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const composition = icu::Normalizer2::getNFCInstance(status);
  std::mt19937 random(seed);
  for (int round = 0; round < 10'000; ++round) {
    const std::size_t letters = round % 2 == 0 ? 10 : alphabet.size();
    std::string text;
    for (auto length = random() % 12; length > 0; --length)
      Unicode::append(text, alphabet[random() % letters]);
    const auto wide = icu::UnicodeString::fromUTF8(text);
    ASSERT_EQ(Unicode::composed(text), utf8(composition->normalize(wide, status))) << text;
    ASSERT_EQ(Unicode::lowercased(text), utf8(icu::UnicodeString(wide).toLower(icu::Locale::getRoot())));
    ASSERT_EQ(Unicode::uppercased(text), utf8(icu::UnicodeString(wide).toUpper(icu::Locale::getRoot())));
    expectCharacters(text, Unicode::characterCount(text));
  }
}

TEST(Unicode, AgreesWithICUOnSeveralThreads) {
  std::vector<std::jthread> threads;
  for (unsigned seed = 1; seed <= 3; ++seed)
    threads.emplace_back(expectAgreementWithICU, seed);
}

TEST(Unicode, LongRunsOfMarksTakeLinearTime) {
  constexpr int count = 300'000;
  // Marks of two classes in turn, which have to be sorted: quadratic work would not end within the time-out.
  EXPECT_TRUE(Unicode::composed("a" + repeated("\u0301\u0316", count)) ==
              "\u00E1" + repeated("\u0316", count) + repeated("\u0301", count - 1));
  EXPECT_EQ(Unicode::characterCount(repeated("a" + repeated("\u0301", count), 2)), 2U);
}

TEST(Unicode, Lines) {
  using Lines = std::vector<std::string_view>;
  EXPECT_EQ(Unicode::lines(""), Lines({""}));
  EXPECT_EQ(Unicode::lines("a\r\n\rb\n\rc\n"), Lines({"a", "", "b", "", "c", ""}));
  EXPECT_EQ(Unicode::lines("a\vb\fc\u0085d\u2028e\u2029f"), Lines({"a", "b", "c", "d", "e", "f"}));
  EXPECT_EQ(Unicode::lines("\u0084\u00A0\u2027\u202A\x1C"), Lines({"\u0084\u00A0\u2027\u202A\x1C"}));
}

TEST(Unicode, SortsByComposedScalars) {
  const std::vector<std::string> sorted = {"", "B", "a", "e\u0301", "\u0119", "\uFF21", "\U00010000"};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j)
      EXPECT_EQ(Unicode::sortsBefore(sorted[i], sorted[j]), i < j) << sorted[i] << ' ' << sorted[j];
  }
  EXPECT_FALSE(Unicode::sortsBefore("é", "e\u0301") || Unicode::sortsBefore("e\u0301", "é"));
}

}  // namespace
}  // namespace zelvo
