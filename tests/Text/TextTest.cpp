#include <string>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "Text/Digest.hpp"
#include "Text/TerminalWidth.hpp"
#include "Text/Url.hpp"

namespace zelvo {
namespace {

TEST(Digest, KnownAnswers) {
  const std::vector<std::uint8_t> abc = {'a', 'b', 'c'};
  const std::vector<std::uint8_t> million(1'000'000, 'a');
  EXPECT_EQ(Digest::sha256({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Digest::sha256(abc), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(Digest::sha256(million), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(TerminalWidth, CountsWhatATerminalShows) {
  // Half-width and full-width forms, Thai marks above each other, a skin tone and one alone, flags, ambiguous
  // characters.
  for (const auto& [text, columns] : testing::cases<2>(R"(
      => 0 ; Orders => 6 ; Bjørnholm => 9 ; 価格表 => 6 ; ﾃｽﾄ => 3 ; ＡＢ => 4 ; 한국 => 4 ; นี้ => 1 ; ☕ => 2 ; ❤ => 1
      👍🏽 => 2 ; 🏽 => 2 ; 🇳🇴🇯🇵 => 4 ; ±§ => 2)"))
    EXPECT_EQ(terminalColumns(text), std::stoul(columns)) << text;
  const std::pair<const char*, std::size_t> rows[] = {
      {"e\u0301", 1},                               // a combining accent
      {"\u1112\u1161\u11AB\u1100\u116E\u11A8", 4},  // Hangul in parts
      {"a\u200Bb\u2060", 2},                        // invisible format characters
      {"a\u00ADb", 3},                              // which a soft hyphen is not
      {"❤\uFE0F", 2},                               // text made an emoji
      {"☕\uFE0F", 2},                               // which it was before
      {"a\uFE0F", 1},                               // no emoji
      {"👩\u200D👩\u200D👧", 2},                       // a family
      {"❤\uFE0F\u200D🔥", 2},                        // two emoji in one
      {"👩\u200Da", 3},                              // nothing that joins
      {"\U000E0001\U000E0041", 0},                  // tags
      {"\U00020000", 2},                            // beyond the first plane
  };
  for (const auto& [text, columns] : rows)
    EXPECT_EQ(terminalColumns(text), columns) << text;
}

TEST(Url, ComponentsAreAsWritten) {
  // Scheme, host, and whether there is user information.
  for (const auto& [text, scheme, host, user] : testing::cases<4>(R"(
      https://example.org/a?b=c#d => https | example.org | no ; HTTP://Example.ORG => HTTP | Example.ORG | no
      http://ex%41mple.org:8080 => http | ex%41mple.org | no ; http://192.0.2.1/ => http | 192.0.2.1 | no
      http://[2001:db8::1]:80/ => http | [2001:db8::1] | no ; http://user@h/ => http | h | yes
      http://user:secret@h/ => http | h | yes ; http://:@h/ => http | h | yes ; http://@h => http | h | yes
      http://h/@x => http | h | no ; http:///path => http | | no ; http://:80/ => http | | no
      mailto:someone@example.org => mailto | | no ; http:path => http | | no)")) {
    const auto components = urlComponents(text);
    ASSERT_TRUE(components) << text;
    EXPECT_EQ(*components, (UrlComponents{scheme, host, user == "yes"})) << text;
  }
}

TEST(Url, WhatIsNoAbsoluteUrl) {
  for (const std::string& text : testing::words(R"(
      example.org /a //h/a ?a ://h 1http://h http//h ␠http://h http://h␠ http://h/a␠b http://h/␊ http://h/%
      http://h/%4 http://h/%gg http://h\a http://[::1 http://[h] http://h:port/ http://a@b@h/ http://é.example/
      http://h/é http://h/{a} http://h/| http://h/" http://h/#a#b http://h/␀)"))
    EXPECT_FALSE(urlComponents(text)) << text;
  EXPECT_FALSE(urlComponents(""));
}

}  // namespace
}  // namespace zelvo
