// The second reader: it sees every difference between a source and what was made of it.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cleaning/CleanedBook.hpp"
#include "DocumentRuntime/CleaningReadBack/CleaningReadBack.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

using testing::CleanedBook;
using testing::PackageBuilder;
using testing::replace;

/// What the second reader sees in a result whose part was changed.
std::string difference(const std::string& part, const std::string& from, const std::string& to,
                       const CleaningReadBack::Expectation& expectation = {}) {
  PackageBuilder source = testing::workbookPackage(testing::richWorkbook());
  replace(
      source.part("xl/worksheets/sheet2.xml").text, "</row>",
      "</row><row><c><f t='shared' si='1' ref='A10'>A1</f></c><c r='C10'><f t='shared' si='1'/></c></row>");
  const CleanedBook book = testing::clean(source);
  PackageBuilder result;
  for (const auto& [name, bytes] : book.parts)
    result.part(name).text = bytes.text();
  if (!part.empty()) replace(result.part(part).text, from, to);
  const ByteBuffer sourceBytes = source.bytes();
  const ByteBuffer resultBytes = result.bytes();
  OOXML::ArchiveTrees sourceTrees(sourceBytes.view());
  OOXML::ArchiveTrees resultTrees(resultBytes.view());
  return CleaningReadBack::difference(sourceTrees, resultTrees, expectation).value_or("");
}

TEST(CleaningReadBack, SeesEveryDifference) {
  EXPECT_EQ(difference("", "", ""), "");
  for (const auto& [part, from, to, expected] : testing::cases<4>(R"(
workbook | name="Sales" | name="Sale" | name or visibility of sheet Sales
workbook | state="hidden" | state="visible" | name or visibility of sheet Hidden
workbook | date1904="0" | date1904="1" | date system
workbook | <sheet name="Sales" sheetId="1" r:id="rId1"/> | | number of sheets
sharedStrings | Region | Regiom | shared string 0
sharedStrings | enue | enue␠ | shared string 1
sharedStrings | <si> | <si/><si> | number of shared strings
styles | numFmtId="14" | numFmtId="15" | number format of cell style 2
styles | formatCode="&quot;$ | formatCode="&quot;€ | number format of cell style 1
styles | <xf numFmtId="10" applyNumberFormat="1"/> | | number of cell styles
worksheets/sheet1 | hidden="1"/></cols> | /></cols> | hidden columns of sheet Sales
worksheets/sheet1 | A6:B6 | A6:B7 | merged areas of sheet Sales
worksheets/sheet1 | <autoFilter ref="A1:E4"/> | | filter of sheet Sales
worksheets/sheet1 | <row r="3" hidden="1"> | <row r="3"> | cell in row 3, column 2 of sheet Sales
worksheets/sheet1 | 1234.5 | 1234.6 | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <c r="B2" s="1"> | <c r="B2" s="2"> | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <c r="B2" s="1"> | <c r="B2"> | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <c r="B2" s="1"> | <c r="B2" s="1" t="str"> | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <c r="B2" | <c r="B7" | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | B4*2 | B4*3 | cell in row 5, column 2 of sheet Sales
worksheets/sheet1 | <f>B4*2</f> | <v>1</v> | cell in row 5, column 2 of sheet Sales
worksheets/sheet1 | <v>1227.5</v> | | cell in row 4, column 2 of sheet Sales
worksheets/sheet1 | >Open< | >Open␠< | cell in row 1, column 3 of sheet Sales
worksheets/sheet1 | <row r="5"> | <row r="7"/><row r="5"> | cell in row 5, column 8 of sheet Sales
worksheets/sheet2 | <f>C1</f> | <f>B1</f> | cell in row 10, column 3 of sheet Hidden
worksheets/sheet2 | </sheetData> | <row r="11"/></sheetData> | number of rows of sheet Hidden
)"))
    EXPECT_EQ(difference("xl/" + part + ".xml", from, to), expected) << from;
  const std::vector<std::string> sales = {"Sales"};
  EXPECT_EQ(difference("", "", "", {.sheets = &sales}), "number of sheets");
  EXPECT_EQ(difference("", "", "", {.unmerge = true}), "merged areas of sheet Sales");
  EXPECT_EQ(difference("xl/styles.xml", "formatCode=\"&quot;$&quot;#,##0.00", "formatCode=\"General",
                       {.plainFormats = true}),
            "");
  EXPECT_EQ(difference("xl/styles.xml", "formatCode=\"&quot;$&quot;#,##0.00", "formatCode=\"h:mm:ss",
                       {.plainFormats = true}),
            "number format of cell style 1");
}

}  // namespace
}  // namespace zelvo
