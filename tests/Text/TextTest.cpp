// Owns Text/Digest, Text/TerminalWidth and Text/Url.
#include <string>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "Text/Digest.hpp"
#include "Text/TerminalWidth.hpp"
#include "Text/Url.hpp"

namespace zelvo {
namespace {

TEST(Digest, KnownAnswers) {
  const std::vector<std::uint8_t> million(1'000'000, 'a');
  EXPECT_EQ(Digest::sha256({}), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(Digest::sha256(million), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(TerminalWidth, CountsWhatATerminalShows) {
  // Half-width and full-width forms, Thai marks above each other, skin tones, flags, ambiguous characters;
  // then an accent, Hangul in parts, format characters, emoji selectors and joiners, tags, a second plane's
  // scalar.
  for (const auto& [text, columns] : testing::cases<2>(
           R"(
      => 0 ; Orders => 6 ; Bjørnholm => 9 ; 価格表 => 6 ; ﾃｽﾄ => 3 ; ＡＢ => 4 ; 한국 => 4 ; นี้ => 1 ; ☕ => 2 ; ❤ => 1
      👍🏽 => 2 ; 🏽 => 2 ; 🇳🇴🇯🇵 => 4 ; ±§ => 2)"
           "\n e\u0301 => 1 ; \u1112\u1161\u11AB\u1100\u116E\u11A8 => 4 ; a\u200Bb\u2060 => 2 ; a\u00ADb => 3"
           "\n ❤\uFE0F => 2 ; ☕\uFE0F => 2 ; a\uFE0F => 1 ; 👩\u200D👩\u200D👧 => 2 ; ❤\uFE0F\u200D🔥 => 2"
           "\n 👩\u200Da => 3 ; \U000E0001\U000E0041 => 0 ; \U00020000 => 2"))
    EXPECT_EQ(terminalColumns(text), std::stoul(columns)) << text;
}

TEST(Url, ComponentsAreAsWritten) {
  const auto components = [](const std::string& text) -> std::string {
    const auto parts = urlComponents(text);
    if (!parts) return "none";
    return std::string(parts->scheme)
        .append(":")
        .append(parts->host)
        .append(parts->hasUserInfo ? " user" : "");
  };
  for (const auto& [text, expected] : testing::cases<2>(R"(
      https://example.org/a?b=c#d => https:example.org ; HTTP://Example.ORG => HTTP:Example.ORG
      http://ex%41mple.org:8080 => http:ex%41mple.org ; http://192.0.2.1/ => http:192.0.2.1
      http://[2001:db8::1]:80/ => http:[2001:db8::1] ; http://user@h/ => http:h user
      http://user:secret@h/ => http:h user ; http://:@h/ => http:h user ; http://@h => http:h user
      http://h/@x => http:h ; http:///path => http: ; http://:80/ => http: ; mailto:someone@example.org => mailto:
      http:path => http: ; => none)"))
    EXPECT_EQ(components(text), expected) << text;
  for (const std::string& text : testing::words(R"(
      example.org /a //h/a ?a ://h 1http://h http//h ␠http://h http://h␠ http://h/a␠b http://h/␊ http://h/%
      http://h/%4 http://h/%gg http://h\a http://[::1 http://[h] http://h:port/ http://a@b@h/ http://é.example/
      http://h/é http://h/{a} http://h/| http://h/" http://h/#a#b http://h/␀)"))
    EXPECT_EQ(components(text), "none") << text;
}

}  // namespace
}  // namespace zelvo
