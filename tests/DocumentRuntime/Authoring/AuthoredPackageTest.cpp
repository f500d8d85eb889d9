// Owns the bytes of authored documents. `script/update-goldens` writes the folder "expected" again.
#include <gtest/gtest.h>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

TEST(AuthoredPackage, IsExactlyTheExpectedBytes) {
  const std::string expected = EXPECTED_FOLDER;
  const std::string title = "Title <1> & \"2\"";
  SourceTable table = testing::sampleTable();
  EXPECT_EQ(testing::differences(DocumentAuthor::docx(table, title), expected + "/word"), "");
  EXPECT_EQ(testing::differences(DocumentAuthor::pptx(table, title, {}), expected + "/deck"), "");
  table.rows[1][0].value = SourceCellValue::text("Nord & Ost");
  const ChartSelection chart = {.categoryColumn = 0, .valueColumn = 1, .title = ""};
  EXPECT_EQ(testing::differences(DocumentAuthor::pptx(table, "Sales", chart), expected + "/deck-with-chart"),
            "");
}

TEST(AuthoredPackage, HasNotesPagesAndColumnsOfOtherTables) {
  const auto holds = [](const ByteBuffer& bytes, std::string_view text) {
    return bytes.text().find(text) != std::string_view::npos;
  };
  SourceTable table = testing::tableOf(3, 11);
  for (const bool isCached : {false, true}) {
    table.headerUsesCachedFormulaValues = isCached;
    EXPECT_EQ(holds(DocumentAuthor::docx(table, "T"), "have not been recalculated"), isCached);
    EXPECT_EQ(holds(DocumentAuthor::pptx(table, "T", {}), "cached formula results"), isCached);
  }
  EXPECT_TRUE(holds(DocumentAuthor::pptx(table, "T", {}), "T · 2/2<"));
  EXPECT_TRUE(holds(DocumentAuthor::docx(table, "T"), R"("/><w:gridCol w:w="3120"/></w:tblGrid>)"));
  EXPECT_TRUE(holds(DocumentAuthor::docx(testing::tableOf(7, 1), "T"), R"(<w:gridCol w:w="1337"/></)"));
}

}  // namespace
}  // namespace zelvo
