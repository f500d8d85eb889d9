#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Authoring/TablePages.hpp"
#include "DocumentRuntime/Authoring/TextEstimate.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

using testing::errorOf;

std::string linesOf(std::size_t count) {
  std::string text = "x";
  for (std::size_t i = 1; i < count; ++i)
    text += "\nx";
  return text;
}

TEST(TextEstimate, CountsLines) {
  const struct {
    std::string text;
    double width;
    std::int64_t expected;
  } rows[] = {
      {"", 100, 1},
      {"\n", 100, 2},
      {"a\r\nb\rc\vd\fe\u0085f\u2028g\u2029h", 100, 8},
      // 10 ordinary characters at 10 points are 65 points wide, 10 wide ones 100.
      {"iiiiiiiiii", 65.1, 1},
      {"iiiiiiiiii", 64.9, 2},
      {"WM@%WM@%WM", 100, 1},
      {"WM@%WM@%WM", 99, 2},
      {"\u0300\u4E00\U0001F600", 30, 1},
      {"\u0300\u4E00\U0001F600", 29, 2},
      {"\u02FF\u02FF\u02FF", 19.6, 1},
      {"iiiiiiiiii\niiiiiiiiii", 32.6, 4},
  };
  for (const auto& row : rows)
    EXPECT_EQ(DocumentAuthor::estimatedLines(row.text, row.width, 10), row.expected) << row.text;
}

TEST(RowHeight, IsTheTallestCellsInDoubles) {
  // (lines x 18.9 + 7.2) points of 12700 EMU, cut; never below 411480.
  const struct {
    std::vector<std::string> cells;
    std::int64_t expected;
  } rows[] = {
      {{}, 411'480},
      {{"x"}, 411'480},
      {{linesOf(2)}, 571'500},
      {{linesOf(3)}, 811'530},
      {{"x", linesOf(7), linesOf(2)}, 1'771'649},  // 1771650 in exact arithmetic
      // Eight columns of 93.6 points: ten characters of 9.1 points fit, eleven take a second line.
      {{"iiiiiiiiii", "", "", "", "", "", "", ""}, 411'480},
      {{"iiiiiiiiiii", "", "", "", "", "", "", ""}, 571'500},
  };
  for (const auto& row : rows)
    EXPECT_EQ(DocumentAuthor::rowHeight(row.cells), row.expected) << row.cells.size();
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

TEST(Presentation, RefusesInTheOrderOfItsChecks) {
  struct Deck {
    SourceTable table = testing::tableOf(1, 21);
    std::string title = "T";
    ChartSelection chart = {.categoryColumn = 0, .valueColumn = 0, .title = "C"};
  };
  // 864 points hold 47 ordinary characters of 18.2 points: two lines are 94.
  const std::string twoLines(94, 'i');
  const std::string threeLines(95, 'i');
  const std::vector<testing::Refusal<Deck>> rows = {
      {"a row that fits under no header",
       [](Deck& deck) { deck.table.rows.back()[0].value = SourceCellValue::text(linesOf(18)); },
       DocumentError::unsupported(
           "presentation cells need too much vertical space; use Word or fewer columns")},
      {"21 slides",
       [](Deck& deck) {
         const auto row = deck.table.rows.front();
         deck.table.rows.insert(deck.table.rows.begin(), 180, row);
       },
       DocumentError::resourceLimit("presentation exceeds 20 table slides")},
      {"title of three lines", [&](Deck& deck) { deck.title = threeLines; },
       DocumentError::unsupported("presentation title is too long for two lines"), "title"},
      {"title of two lines with the number of the slide", [&](Deck& deck) { deck.title = twoLines; },
       DocumentError::unsupported("presentation title is too long for two lines"), "title"},
      {"chart title of three lines", [&](Deck& deck) { deck.chart.title = threeLines; },
       DocumentError::unsupported("chart title is too long for two lines")},
  };
  const auto author = [](const Deck& deck) { DocumentAuthor::pptx(deck.table, deck.title, deck.chart); };
  testing::expectRefusals<Deck>([] { return Deck(); }, rows, author);

  Deck onePage{.table = testing::tableOf(1, 10), .title = twoLines};
  onePage.chart.title = twoLines;
  EXPECT_FALSE(errorOf([&] { author(onePage); }));
  Deck tallest{.table = testing::tableOf(1, 1)};
  tallest.table.rows[0][0].value = SourceCellValue::text(linesOf(17));
  EXPECT_FALSE(errorOf([&] { author(tallest); }));
}

}  // namespace
}  // namespace zelvo
