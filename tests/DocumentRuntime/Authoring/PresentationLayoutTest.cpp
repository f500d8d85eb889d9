// Owns the layout of presentations: estimated lines, row heights, slides of a table, and what does not fit.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

std::string linesOf(std::size_t count) {
  return testing::repeated("x\n", count - 1) + "x";
}

TEST(TextEstimate, CountsLines) {
  // The text, how many points wide its room is, and the lines of 10 points that it takes: 10 ordinary
  // characters are 65 points wide, 10 wide ones 100.
  for (const auto& [text, width, lines] :
       testing::cases<3>(R"(
      | 100 => 1 ; ␊ | 100 => 2 ; a␍␊b␍c␋d␌e␊f␊g␊h | 100 => 8 ; iiiiiiiiii␊iiiiiiiiii | 32.6 => 4
      iiiiiiiiii | 65.1 => 1 ; iiiiiiiiii | 64.9 => 2 ; WM@%WM@%WM | 100 => 1 ; WM@%WM@%WM | 99 => 2)"
                         "\n a\u0085b\u2028c\u2029d | 100 => 4 ; \u02FF\u02FF\u02FF | 19.6 => 1"
                         "\n \u0300\u4E00\U0001F600 | 30 => 1 ; \u0300\u4E00\U0001F600 | 29 => 2"))
    EXPECT_EQ(DocumentAuthor::estimatedLines(text, std::stod(width), 10), std::stoi(lines)) << text;
}

TEST(RowHeight, IsTheTallestCellsInDoubles) {
  // (lines x 18.9 + 7.2) points of 12700 EMU, cut; never below 411480.
  const auto height = [](std::vector<std::string> cells) { return DocumentAuthor::rowHeight(cells); };
  EXPECT_EQ(height({"x"}), 411'480);
  EXPECT_EQ(height({linesOf(2)}), 571'500);
  EXPECT_EQ(height({linesOf(3)}), 811'530);
  EXPECT_EQ(height({"x", linesOf(7), linesOf(2)}), 1'771'649);  // 1771650 in exact arithmetic
  // Eight columns of 93.6 points: ten characters of 9.1 points fit, eleven take a second line.
  EXPECT_EQ(height({"iiiiiiiiii", "", "", "", "", "", "", ""}), 411'480);
  EXPECT_EQ(height({"iiiiiiiiiii", "", "", "", "", "", "", ""}), 571'500);
}

TEST(TablePages, BreakAtTheLastUnitThatFits) {
  // The lines of the rows, how often these rows are repeated, and the slides that they take. A header and ten
  // rows of 411480 EMU take 4526280 of 4650000; an eleventh row starts the next slide. 411480 + 1771649 +
  // 2 x 571500 + 3 x 411480 is 4560569: with one line more in the tall row it is too much.
  for (const auto& [lines, count, slides] : testing::cases<3>(R"(
      1 | 0 => 0 ; 1 | 10 => 1 ; 1 | 11 => 2 ; 1 | 20 => 2 ; 1 | 21 => 3 ; 1 | 200 => 20 ; 7 2 1 1 1 2 | 1 => 1
      8 2 1 1 1 2 | 1 => 2 ; 17 | 1 => 1)")) {
    SourceTable table = testing::tableOf(1, 0);
    for (int i = 0; i < std::stoi(count); ++i) {
      for (const std::string& height : testing::words(lines))
        table.rows.push_back({{.value = SourceCellValue::text(linesOf(std::stoul(height)))}});
    }
    const auto pages = DocumentAuthor::tablePages(table);
    EXPECT_EQ(pages.size(), std::stoul(slides)) << lines;
    for (const auto& page : pages)
      EXPECT_EQ(page.front(), table.columns);
  }
}

struct Deck {
  SourceTable table = testing::tableOf(1, 21);
  std::string title = "T";
  ChartSelection chart = {.categoryColumn = 0, .valueColumn = 0, .title = "C"};
};

TEST(Presentation, RefusesInOrder) {
  using D = Deck&;
  // 864 points hold 47 ordinary characters of 18.2 points: two lines are 94, which leaves no room for a
  // number.
  const std::string twoLines(94, 'i');
  const std::string longTitle = "unsupported: presentation title is too long for two lines";
  const auto author = [](const Deck& deck) { DocumentAuthor::pptx(deck.table, deck.title, deck.chart); };
  testing::expectRefusals<Deck>(
      [] { return Deck(); },
      {{"tall", [](D deck) { deck.table.rows.back()[0].value = SourceCellValue::text(linesOf(18)); },
        "unsupported: presentation cells need too much vertical space; use Word or fewer columns"},
       {"21 slides", [](D deck) { deck.table.rows.insert(deck.table.rows.begin(), 180, deck.table.rows[0]); },
        "resourceLimit: presentation exceeds 20 table slides"},
       {"title of three lines", [&](D deck) { deck.title = twoLines + 'i'; }, longTitle, "title"},
       {"two lines and a number", [&](D deck) { deck.title = twoLines; }, longTitle, "title"},
       {"chart title of three lines", [&](D deck) { deck.chart.title = twoLines + 'i'; },
        "unsupported: chart title is too long for two lines"}},
      author);
  EXPECT_NO_THROW(author({testing::tableOf(1, 10), twoLines, {.title = twoLines}}));
}

}  // namespace
}  // namespace zelvo
