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
  for (const auto& [text, width, lines] : testing::cases<3>(R"(
      | 100 => 1 ; ␊ | 100 => 2 ; a␍␊b␍c␋d␌e␊f␊g␊h | 100 => 8 ; iiiiiiiiii␊iiiiiiiiii | 32.6 => 4
      iiiiiiiiii | 65.1 => 1 ; iiiiiiiiii | 64.9 => 2 ; WM@%WM@%WM | 100 => 1 ; WM@%WM@%WM | 99 => 2)"))
    EXPECT_EQ(DocumentAuthor::estimatedLines(text, std::stod(width), 10), std::stoi(lines)) << text;
  EXPECT_EQ(DocumentAuthor::estimatedLines("a\u0085b\u2028c\u2029d", 100, 10), 4);
  for (const auto& [width, lines] : {std::pair{30.0, 1}, {29.0, 2}})
    EXPECT_EQ(DocumentAuthor::estimatedLines("\u0300\u4E00\U0001F600", width, 10), lines);
  EXPECT_EQ(DocumentAuthor::estimatedLines("\u02FF\u02FF\u02FF", 19.6, 10), 1);
}

TEST(RowHeight, IsTheTallestCellsInDoubles) {
  // (lines x 18.9 + 7.2) points of 12700 EMU, cut; never below 411480.
  const auto height = [](std::vector<std::string> cells) { return DocumentAuthor::rowHeight(cells); };
  EXPECT_EQ(height({}), 411'480);
  EXPECT_EQ(height({"x"}), 411'480);
  EXPECT_EQ(height({linesOf(2)}), 571'500);
  EXPECT_EQ(height({linesOf(3)}), 811'530);
  EXPECT_EQ(height({"x", linesOf(7), linesOf(2)}), 1'771'649);  // 1771650 in exact arithmetic
  // Eight columns of 93.6 points: ten characters of 9.1 points fit, eleven take a second line.
  EXPECT_EQ(height({"iiiiiiiiii", "", "", "", "", "", "", ""}), 411'480);
  EXPECT_EQ(height({"iiiiiiiiiii", "", "", "", "", "", "", ""}), 571'500);
}

TEST(TablePages, BreakAtTheLastUnitThatFits) {
  // A header and ten rows of 411480 EMU take 4526280 of 4650000; an eleventh row starts the next slide.
  for (const auto& [rows, pages] : {std::pair{10U, 1U}, {11U, 2U}, {20U, 2U}, {21U, 3U}, {200U, 20U}}) {
    const auto result = DocumentAuthor::tablePages(testing::tableOf(2, rows));
    EXPECT_EQ(result.size(), pages) << rows;
    for (const auto& page : result)
      EXPECT_EQ(page.front(), testing::tableOf(2, rows).columns);
  }
  // 411480 + 1771649 + 2 x 571500 + 3 x 411480 is 4560569: all on one slide; with one line more in the tall
  // row, two.
  SourceTable table = testing::tableOf(1, 6);
  table.rows[0][0].value = SourceCellValue::text(linesOf(7));
  table.rows[1][0].value = SourceCellValue::text(linesOf(2));
  table.rows[5][0].value = SourceCellValue::text(linesOf(2));
  EXPECT_EQ(DocumentAuthor::tablePages(table).size(), 1U);
  table.rows[0][0].value = SourceCellValue::text(linesOf(8));
  EXPECT_EQ(DocumentAuthor::tablePages(table).size(), 2U);
  table.rows.clear();
  EXPECT_TRUE(DocumentAuthor::tablePages(table).empty());
}

struct Deck {
  SourceTable table = testing::tableOf(1, 21);
  std::string title = "T";
  ChartSelection chart = {.categoryColumn = 0, .valueColumn = 0, .title = "C"};
};

TEST(Presentation, RefusesInTheOrderOfItsChecks) {
  using D = Deck&;
  // 864 points hold 47 ordinary characters of 18.2 points: two lines are 94.
  const std::string twoLines(94, 'i');
  const std::string threeLines(95, 'i');
  const auto longTitle = DocumentError::unsupported("presentation title is too long for two lines");
  const std::vector<testing::Refusal<Deck>> rows = {
      {"tall", [](D deck) { deck.table.rows.back()[0].value = SourceCellValue::text(linesOf(18)); },
       "unsupported: presentation cells need too much vertical space; use Word or fewer columns"},
      {"21 slides", [](D deck) { deck.table.rows.insert(deck.table.rows.begin(), 180, deck.table.rows[0]); },
       "resourceLimit: presentation exceeds 20 table slides"},
      {"title of three lines", [&](D deck) { deck.title = threeLines; }, longTitle, "title"},
      {"two lines and a number", [&](D deck) { deck.title = twoLines; }, longTitle, "title"},
      {"chart title of three lines", [&](D deck) { deck.chart.title = threeLines; },
       "unsupported: chart title is too long for two lines"},
  };
  const auto author = [](const Deck& deck) { DocumentAuthor::pptx(deck.table, deck.title, deck.chart); };
  testing::expectRefusals<Deck>([] { return Deck(); }, rows, author);

  EXPECT_NO_THROW(author({testing::tableOf(1, 10), twoLines, {.title = twoLines}}));
  Deck tallest{.table = testing::tableOf(1, 1)};
  tallest.table.rows[0][0].value = SourceCellValue::text(linesOf(17));
  EXPECT_NO_THROW(author(tallest));
}

}  // namespace
}  // namespace zelvo
