#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Text/TerminalWidth.hpp"

namespace zelvo {
namespace {

TEST(TerminalWidth, CountsWhatATerminalShows) {
  struct Row {
    std::string_view text;
    std::size_t columns;
  };
  const std::vector<Row> rows = {
      {"", 0},
      {"Orders", 6},
      {"Bjørnholm", 9},
      {"価格表", 6},
      {"ﾃｽﾄ", 3},      // half-width forms
      {"ＡＢ", 4},     // full-width forms
      {"e\u0301", 1},  // a combining accent
      {"한국", 4},     // composed Hangul, and the same in parts
      {"\u1112\u1161\u11AB\u1100\u116E\u11A8", 4},
      {"นี้", 1},               // Thai marks above each other
      {"a\u200Bb\u2060", 2},  // invisible format characters
      {"a\u00ADb", 3},        // which a soft hyphen is not
      {"☕", 2},
      {"❤", 1},
      {"❤\uFE0F", 2},               // text made an emoji
      {"☕\uFE0F", 2},               // which it was before
      {"a\uFE0F", 1},               // no emoji
      {"👍🏽", 2},              // with a skin tone
      {"🏽", 2},                  // the tone alone
      {"👩\u200D👩\u200D👧", 2},       // a family
      {"❤\uFE0F\u200D🔥", 2},        // two emoji in one
      {"👩\u200Da", 3},              // nothing that joins
      {"🇳🇴🇯🇵", 4},                  // flags
      {"\U000E0001\U000E0041", 0},  // tags
      {"\U00020000", 2},            // beyond the first plane
      {"±§", 2},                    // ambiguous ones
  };
  for (const Row& row : rows)
    EXPECT_EQ(terminalColumns(row.text), row.columns) << row.text;
}

}  // namespace
}  // namespace zelvo
