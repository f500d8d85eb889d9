#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/normalizer2.h>

#include "Support/Texts.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Characters = std::vector<std::string>;

TEST(Unicode, Characters) {
  const std::vector<Characters> texts = {
      {},
      {"a", "b"},
      {"\r\n", "\n", "\r", "\r", "\r\n"},
      {"a", "\r\n", "é"},
      {"e\u0301", "o\u0323\u0302", "x"},                               // combining marks
      {"\n", "\u0301"},                                                // nothing joins to a line break
      {"\U0001F469\u200D\U0001F680", "\u2764\uFE0F\u200D\U0001F525"},  // joined by ZWJ
      {"\U0001F44D\U0001F3FD", "1\uFE0F\u20E3"},                       // skin tone, keycap
      {"\U0001F1F3\U0001F1F4", "\U0001F1EA\U0001F1FA", "\U0001F1F8"},  // flags, one of them half
      {"\uD55C", "\u1112\u1161\u11AB", "\u1100\u1100\u1161"},          // Hangul, composed and not
      {"\u0BA8\u0BBF", "\u0E01\u0E33"},                                // spacing marks
      {"\u06001", "2"},                                                // prepended
  };
  for (const Characters& characters : texts) {
    const std::string text = std::accumulate(characters.begin(), characters.end(), std::string());
    EXPECT_EQ(Unicode::characterCount(text), characters.size()) << text;
    std::string expected;
    for (std::size_t count = 0; count <= characters.size(); ++count) {
      EXPECT_EQ(Unicode::prefix(text, count), expected) << text;
      EXPECT_EQ(Unicode::exceeds(text, count), count < characters.size()) << text << ' ' << count;
      if (count < characters.size()) expected += characters[count];
    }
    EXPECT_EQ(Unicode::prefix(text, SIZE_MAX), text);
    EXPECT_FALSE(Unicode::exceeds(text, SIZE_MAX));
  }
}

TEST(Unicode, CharactersBehindLongASCII) {
  // The mark stands behind, at, and inside the bytes that a limit of 10 looks at.
  for (std::size_t letters = 0; letters < 30; ++letters) {
    const std::string text = std::string(letters, 'a') + "b\u0301c";
    EXPECT_EQ(Unicode::exceeds(text, 10), letters + 2 > 10) << letters;
    EXPECT_EQ(Unicode::characterCount(Unicode::prefix(text, 10)), std::min<std::size_t>(letters + 2, 10));
  }
  const std::string marks = "a" + testing::repeated("\u0301", 100'000);
  EXPECT_EQ(Unicode::characterCount(marks + marks), 2U);
  EXPECT_EQ(Unicode::prefix(marks + "bc", 2), marks + "b");
}

TEST(Unicode, Case) {
  EXPECT_EQ(Unicode::lowercased("AZ@[az"), "az@[az");
  EXPECT_EQ(Unicode::uppercased("AZ`{az"), "AZ`{AZ");
  EXPECT_EQ(Unicode::lowercased("STRASSE"), "strasse");
  EXPECT_EQ(Unicode::lowercased("STRAẞE Iİ"), "straße ii\u0307");
  EXPECT_EQ(Unicode::uppercased("straße ıi ŉ ﬃ"), "STRASSE II ʼN FFI");
  EXPECT_EQ(Unicode::lowercased("ὈΔΥΣΣΕΎΣ"), "ὀδυσσεύς");
  EXPECT_EQ(Unicode::uppercased("\u0390"), "\u0399\u0308\u0301");  // grows threefold
}

TEST(Unicode, Composition) {
  EXPECT_EQ(Unicode::composed("e\u0301 plain"), "é plain");
  EXPECT_EQ(Unicode::composed("\u1112\u1161\u11AB"), "한");
  EXPECT_EQ(Unicode::composed("ﬁ Å"), "ﬁ Å");                                    // canonical, not compatible
  EXPECT_EQ(Unicode::composed("\U0001D160"), "\U0001D158\U0001D165\U0001D16E");  // grows threefold
}

TEST(Unicode, CompositionOfLongRunsOfMarks) {
  // Marks of two classes in turn, which have to be sorted: quadratic work would not end within the time-out.
  constexpr int count = 300'000;
  using testing::repeated;
  EXPECT_TRUE(Unicode::composed("a" + repeated("\u0301\u0316", count)) ==
              "\u00E1" + repeated("\u0316", count) + repeated("\u0301", count - 1));
}

TEST(Unicode, CompositionAgreesWithICU) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const composition = icu::Normalizer2::getNFCInstance(status);
  // Marks of several classes, parts of compositions, scalars that decompose into marks alone, Hangul.
  constexpr std::u32string_view alphabet =
      U"aAo\u0301\u0316\u0323\u0302\u0308\u0344\u0345\u00E9\u1E69\u212B\u0F71\u0F72\u0F73\u0F75\u0F81\u09C7"
      U"\u09BE"
      U"\u0DD9\u0DCF\u0DCA\u1100\u1161\u11A8\uAC00\u304B\u3099\u2ADC\uFB1D\U0001D160\U0001D165\U00011131"
      U"\U00011127";
  std::mt19937 random(1);
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (auto length = random() % 12; length > 0; --length) {
      Unicode::append(text, alphabet[random() % alphabet.size()]);
    }
    std::string expected;
    icu::StringByteSink<std::string> sink(&expected);
    composition->normalizeUTF8(0, text, sink, nullptr, status);
    ASSERT_TRUE(U_SUCCESS(status));
    ASSERT_EQ(Unicode::composed(text), expected) << text;
  }
}

TEST(Unicode, SortedByComposedScalars) {
  const std::vector<std::string> sorted = {"", "B", "a", "e\u0301", "\u0119", "\uFF21", "\U00010000"};
  for (std::size_t i = 0; i < sorted.size(); ++i) {
    for (std::size_t j = 0; j < sorted.size(); ++j) {
      EXPECT_EQ(Unicode::sortsBefore(sorted[i], sorted[j]), i < j) << sorted[i] << ' ' << sorted[j];
    }
  }
  EXPECT_FALSE(Unicode::sortsBefore("é", "e\u0301"));
  EXPECT_FALSE(Unicode::sortsBefore("e\u0301", "é"));
}

TEST(Unicode, ThreadsDoNotShareState) {
  std::vector<std::size_t> counts(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    threads.emplace_back([&counts, i] {
      for (int round = 0; round < 20'000; ++round)
        counts[i] += Unicode::characterCount("e\u0301e\u0301" + std::string(i, 'a'));
    });
  }
  for (auto& thread : threads)
    thread.join();
  EXPECT_EQ(counts, (std::vector<std::size_t>{40'000, 60'000, 80'000, 100'000}));
}

}  // namespace
}  // namespace zelvo
