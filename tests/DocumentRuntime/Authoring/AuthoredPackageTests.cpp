#include <filesystem>

#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

const std::filesystem::path expected = EXPECTED_FOLDER;

TEST(AuthoredPackage, IsExactlyTheExpectedBytes) {
  const SourceTable table = testing::sampleTable();
  EXPECT_EQ(testing::differences(DocumentAuthor::docx(table, "Title <1> & \"2\""), expected / "word"), "");
  EXPECT_EQ(
      testing::differences(DocumentAuthor::pptx(table, "Title <1> & \"2\"", std::nullopt), expected / "deck"),
      "");

  SourceTable charted = table;
  charted.rows[1][0].value = SourceCellValue::text("Nord & Ost");
  EXPECT_EQ(testing::differences(
                DocumentAuthor::pptx(charted, "Sales",
                                     ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = ""}),
                expected / "deck-with-chart"),
            "");
}

TEST(AuthoredPackage, NotesStoredResultsOfTheHeaderAlone) {
  SourceTable table = testing::tableOf(3, 1);
  const auto holds = [](const ByteBuffer& bytes, std::string_view text) {
    return bytes.text().find(text) != std::string_view::npos;
  };
  EXPECT_FALSE(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"));
  EXPECT_FALSE(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"));
  table.headerUsesCachedFormulaValues = true;
  EXPECT_TRUE(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"));
  EXPECT_TRUE(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"));
  EXPECT_TRUE(holds(DocumentAuthor::docx(table, "T"),
                    R"(<w:gridCol w:w="3120"/><w:gridCol w:w="3120"/><w:gridCol w:w="3120"/></)"));
  EXPECT_TRUE(
      holds(DocumentAuthor::docx(testing::tableOf(7, 1), "T"), R"(<w:gridCol w:w="1337"/></w:tblGrid>)"));
}

}  // namespace
}  // namespace zelvo
