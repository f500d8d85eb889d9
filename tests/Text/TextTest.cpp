// Owns Text/Digest, Text/TerminalWidth, Text/Url and, beside UnicodeAgainstICUTest, Text/Unicode.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "Text/Digest.hpp"
#include "Text/TerminalWidth.hpp"
#include "Text/Unicode.hpp"
#include "Text/Url.hpp"

namespace zelvo {
namespace {

TEST(Digest, KnownAnswers) {
  const std::vector<std::uint8_t> million(1'000'000, 'a');
  EXPECT_EQ(Digest::sha256({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Digest::sha256(million), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
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
  }
  expectCharacters("\n\u0301", 2);
  expectCharacters("\r\n\r\n\r\n", 3);
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

TEST(TerminalWidth, AddsUpTheColumnsOfSequences) {
  // Words; Thai marks above each other, skin tones, flags; an accent, Hangul in parts, format characters,
  // emoji selectors and joiners, tags.
  for (const auto& [text, columns] : testing::cases<2>(
           R"(
      => 0 ; Orders => 6 ; Bjørnholm => 9 ; 価格表 => 6 ; ﾃｽﾄ => 3 ; นี้ => 1 ; 👍🏽 => 2 ; 🏽 => 2 ; 🇳🇴🇯🇵 => 4)"
           "\n e\u0301 => 1 ; \u1112\u1161\u11AB\u1100\u116E\u11A8 => 4 ; a\u200Bb\u2060 => 2 ; a\u00ADb => 3"
           "\n ❤\uFE0F => 2 ; ☕\uFE0F => 2 ; a\uFE0F => 1 ; 👩\u200D👩\u200D👧 => 2 ; ❤\uFE0F\u200D🔥 => 2"
           "\n 👩\u200Da => 3 ; \U000E0001\U000E0041 => 0"))
    EXPECT_EQ(terminalColumns(text), std::stoul(columns)) << text;
}

TEST(Url, ComponentsAreAsWritten) {
  for (const auto& [text, scheme, host, user] : testing::cases<4>(R"(
      https://example.org/a?b=c#d => https | example.org | ; HTTP://Example.ORG => HTTP | Example.ORG |
      http://ex%41mple.org:8080 => http | ex%41mple.org | ; http://[2001:db8::1]:80/ => http | [2001:db8::1] |
      http://user:secret@h/ => http | h | user ; http://:@h/ => http | h | user ; http://@h => http | h | user
      http://h/@x => http | h | ; http:///path => http | | ; http://:80/ => http | | ; mailto:a@h => mailto | |)")) {
    const auto parts = urlComponents(text).value();
    EXPECT_TRUE(parts.scheme == scheme && parts.host == host && parts.hasUserInfo == !user.empty()) << text;
  }
  for (const std::string& text : testing::words(R"(
      example.org /a //h/a ?a ://h 1http://h http//h ␠http://h http://h␠ http://h/a␠b http://h/␊ http://h/%
      http://h/%4 http://h/%gg http://h\a http://[::1 http://[h] http://h:port/ http://a@b@h/ http://é.example/
      http://h/é http://h/{a} http://h/| http://h/" http://h/#a#b http://h/␀)"))
    EXPECT_FALSE(urlComponents(text)) << text;
  EXPECT_FALSE(urlComponents(""));
}

}  // namespace
}  // namespace zelvo
