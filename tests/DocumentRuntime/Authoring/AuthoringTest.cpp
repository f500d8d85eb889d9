// Owns the bytes of authored documents and the layout of presentations: estimated lines, slides of a
// table, and what does not fit. `script/update-goldens` writes the folder "expected" again.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

namespace zelvo {
namespace {

using namespace testing;

TEST(AuthoredPackage, IsExactlyTheExpectedBytes) {
  const std::string expected = EXPECTED_FOLDER;
  const std::string title = "Title <1> & \"2\"";
  SourceTable table = sampleTable();
  EXPECT_EQ(differences(DocumentAuthor::docx(table, title), expected + "/word"), "");
  EXPECT_EQ(differences(DocumentAuthor::pptx(table, title, {}), expected + "/deck"), "");
  table.rows[1][0].value = SourceCellValue::text("Nord & Ost");
  const ChartSelection chart = {.categoryColumn = 0, .valueColumn = 1, .title = ""};
  EXPECT_EQ(differences(DocumentAuthor::pptx(table, "Sales", chart), expected + "/deck-with-chart"), "");
}

TEST(AuthoredPackage, HasNotesPagesAndColumnsOfOtherTables) {
  const auto holds = [](const ByteBuffer& bytes, std::string_view text) {
    return bytes.text().find(text) != std::string_view::npos;
  };
  SourceTable table = tableOf(3, 11);
  for (const bool isCached : {false, true}) {
    table.headerUsesCachedFormulaValues = isCached;
    EXPECT_EQ(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"), isCached);
    EXPECT_EQ(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"), isCached);
  }
  EXPECT_TRUE(holds(DocumentAuthor::pptx(table, "T", {}), "T · 2/2<"));
}

std::string linesOf(std::size_t count) {
  return repeated("x\n", count - 1) + "x";
}

TEST(TextEstimate, CountsLines) {
  // The text, the width in points, and the lines of 10 points that the text takes: 10 ordinary
  // characters are 65 points wide, 10 wide ones 100.
  for (const auto& [text, width, lines] :
       cases<3>(R"(
      | 100 => 1 ; ␊ | 100 => 2 ; a␍␊b␍c␋d␌e␊f␊g␊h | 100 => 8 ; iiiiiiiiii␊iiiiiiiiii | 32.6 => 4
      iiiiiiiiii | 65.1 => 1 ; iiiiiiiiii | 64.9 => 2 ; WM@%WM@%WM | 100 => 1 ; WM@%WM@%WM | 99 => 2)"
                "\n a\u0085b\u2028c\u2029d | 100 => 4 ; \u02FF\u02FF\u02FF | 19.6 => 1"
                "\n \u0300\u4E00\U0001F600 | 30 => 1 ; \u0300\u4E00\U0001F600 | 29 => 2"))
    EXPECT_EQ(DocumentAuthor::estimatedLines(text, std::stod(width), 10), std::stoi(lines)) << text;
}

TEST(TablePages, BreakAtTheLastUnitThatFits) {
  // The lines of the rows, how often these rows are repeated, and the slides that they take. A header and ten
  // rows of 411480 EMU take 4526280 of 4650000; an eleventh row starts the next slide. 411480 + 1771649 +
  // 2 x 571500 + 3 x 411480 is 4560569: with one line more in the tall row it is too much.
  for (const auto& [lines, count, slides] : cases<3>(R"(
      1 | 0 => 0 ; 1 | 10 => 1 ; 1 | 11 => 2 ; 1 | 20 => 2 ; 1 | 21 => 3 ; 1 | 200 => 20 ; 7 2 1 1 1 2 | 1 => 1
      8 2 1 1 1 2 | 1 => 2 ; 17 | 1 => 1)")) {
    SourceTable table = tableOf(1, 0);
    for (int i = 0; i < std::stoi(count); ++i) {
      for (const std::string& height : words(lines))
        table.rows.push_back({{.value = SourceCellValue::text(linesOf(std::stoul(height)))}});
    }
    EXPECT_EQ(DocumentAuthor::tablePages(table).size(), std::stoul(slides)) << lines;
  }
}

TEST(Presentation, RefusesInOrder) {
  // The rows, the lines of the last, and the lengths of the title and the chart's title. 864 points hold 47
  // ordinary characters of 18.2 points: two lines are 94, which leaves no space for a number.
  for (const auto& [rows, lines, title, chartTitle, expected] : cases<5>(R"(
      201 | 18 | 95 | 95 => unsupported: presentation cells need too much vertical space; use Word or fewer columns
      201 | 1 | 95 | 95 => resourceLimit: presentation exceeds 20 table slides
      21 | 1 | 94 | 95 => unsupported: presentation title is too long for two lines
      10 | 1 | 95 | 95 => unsupported: presentation title is too long for two lines
      10 | 1 | 94 | 95 => unsupported: chart title is too long for two lines ; 10 | 1 | 94 | 94 =>)")) {
    SourceTable table = tableOf(1, std::stoul(rows));
    table.rows.back()[0].value = SourceCellValue::text(linesOf(std::stoul(lines)));
    const ChartSelection chart{0, 0, std::string(std::stoul(chartTitle), 'i')};
    const auto author = [&, &title = title] {
      DocumentAuthor::pptx(table, std::string(std::stoul(title), 'i'), chart);
    };
    EXPECT_EQ(outcomeOf(author), expected) << rows << ' ' << lines;
  }
}

}  // namespace
}  // namespace zelvo
