// What the cleaner keeps of rows and cells.

#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cleaning/CleanedBook.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

using namespace testing;

/// The rows of a sheet once cleaned, or why the workbook is refused.
std::string cleaned(const std::string& rows) {
  std::string kept;
  const auto refusal = testing::outcomeOf([&] { kept = clean(testing::plainWorkbook(rows)).rows(); });
  return refusal.text.empty() ? kept : refusal.text;
}

TEST(CellCleaning, KeepsWhatIsUnderstoodAndRefusesWhatCouldBeReadInTwoWays) {
  // The cells of row 1. "$p" preserves spaces, and each refusal ends in the sheet's name.
  for (auto [cells, expected] : testing::cases<2>(R"(
<c r="A1"><v>1</v></c> => <c r="A1"><v>1</v></c>
<c r="$b$1" s="07" t=""><v>1</v></c> => <c r="B1" s="07"><v>1</v></c>
<c r="A1" s="1"/><c r="B1" t="str"><v></v></c><c r="C1" t="inlineStr"><is><t/></is></c> =>
<c r="A1" t="x:y" /> => invalidArchive: attribute "t" in cell A1
<c r="A1" t="str"><f ca="1">B1</f><v/></c> => <c r="A1" t="str"><f>B1</f><v/></c>
<c r="A1" t="s" cm="1" vm="2" ph="1"><v>99</v></c> => <c r="A1" t="s"><v>99</v></c>
<c r="A1" t="str"><v>&#13;&#10;<![CDATA[<&"]]>]]&gt;</v></c> => <c r="A1" t="str"><v$p>&#13;␊&lt;&amp;"]]&gt;</v></c>
<c r="A1" t="inlineStr"><is><t>a</t></is></c> => <c r="A1" t="inlineStr"><is><t$p>a</t></is></c>
<c r="A1" t="inlineStr"><is><r><rPr><b/></rPr><t>a</t></r><rPh sb="0" eb="1"><t>b</t></rPh></is></c> => <c r="A1" t="inlineStr"><is><r><t$p>a</t></r></is></c>
<c r="A1"><f t="array" ref="a1:$A$2" aca="1">B1:B2</f><v>1</v><extLst><x/></extLst></c> => <c r="A1"><f t="array" ref="A1:A2">B1:B2</f><v>1</v></c>
<c r="A1"><f t="dataTable" ref="A1:A1" dt2D="true" dtr="0" r1="b2" r2="?"/></c> => <c r="A1"><f t="dataTable" ref="A1" dt2D="1" r1="B2"/></c>
<m:c xmlns:m="http://schemas.openxmlformats.org/spreadsheetml/2006/main" r="A1"><m:v>1</m:v></m:c> => <c r="A1"><v>1</v></c>
<c r="A1"><x/></c> => unsupported: unknown element in cell A1
<c r="A1"><v xmlns="">1</v></c> => unsupported: unknown element in cell A1
<mc:AlternateContent xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006"/> => unsupported: unknown element in row 1
<c r="A1"><v>1</v><v>2</v></c> => invalidArchive: repeated element "v" in cell A1
<c r="A1"/><c r="A1"><v>1</v></c> => invalidArchive: repeated cell A1
<c r="A2"><v>1</v></c> => invalidArchive: cell A2 in row 1
<c r="ı1"><v>1</v></c> => invalidArchive: attribute "r" in a cell in row 1
<c r="XFD1"/><c/> => invalidArchive: cell XFE1 in row 1
<c r="A1"><f t="shared" si="x">1</f></c> => invalidArchive: attribute "si" in cell A1)")) {
    const std::string kept = cleaned("<row r=\"1\">" + cells + "</row>");
    if (expected.find("$p") != std::string::npos) replace(expected, "$p", R"( xml:space="preserve")");
    const bool isRefused = !expected.empty() && !expected.starts_with("<c");
    const std::string row = expected.empty() ? "" : "<row r=\"1\">" + expected + "</row>";
    EXPECT_EQ(kept, isRefused ? expected + " of sheet Data" : row) << cells;
  }
}

TEST(CellCleaning, KeepsRowsThatHaveCellsOrAreHidden) {
  for (const auto& [source, expected] : testing::cases<2>(R"(
<row spans='1:9' ht='20' customHeight='1' s='1'><c><v>1</v></c></row> => <row r="1" ht="20" customHeight="1"><c r="A1"><v>1</v></c></row>
<row r='7' hidden='true' ht='x'/><row r='3'/><row><c><v>1</v></c></row> => <row r="7" hidden="1"/><row r="4"><c r="A4"><v>1</v></c></row>
<row r='2'/><row r='1'/><row/> => invalidArchive: repeated row 2 of sheet Data
<row r='1048576'/><row/> => invalidArchive: rows past the end of sheet Data
<row r='0'/> => invalidArchive: attribute "r" in the row after row 0 of sheet Data)"))
    EXPECT_EQ(cleaned(source), expected) << source;
}

TEST(CellCleaning, KeepsColumnsFiltersAndMergedAreasInOrder) {
  const auto book = clean(
      {.sheets = {
           {"Data",
            R"(<mergeCells><mergeCell ref="b1:$C$2"/><mergeCell/></mergeCells><autoFilter ref="A1:B9"><x/></autoFilter>
                     <sheetData/><cols><col min="-3" max="2" hidden="1"/><col min="4" max="5" width="9.5" customWidth="1"/>
                     <col min="9" max="8" hidden="1"/><col min="6" max="6" style="1"/><col min="16384" max="99999" hidden="1"/></cols>
                     <cols><col min="7" max="7" width="-1" hidden="1"/></cols>)"}}});
  EXPECT_EQ(book.part("xl/worksheets/sheet1.xml", "/main\">", "</worksheet>"),
            R"(<cols><col min="1" max="2" hidden="1"/><col min="4" max="5" width="9.5" customWidth="1"/>)"
            R"(<col min="16384" max="16384" hidden="1"/><col min="7" max="7" hidden="1"/></cols><sheetData/>)"
            R"(<autoFilter ref="A1:B9"/><mergeCells><mergeCell ref="B1:C2"/></mergeCells>)");
  EXPECT_EQ(testing::refusalOf(testing::plainWorkbook("</sheetData><sheetData>")),
            "invalidArchive: repeated element \"sheetData\" in sheet Data");
}

TEST(CellCleaning, WritesSharedFormulasOut) {
  std::string rows;
  std::string expected;
  int number = 0;
  for (const auto& [attributes, formula, written] : testing::cases<3>(R"(
      si='5' | => <f t="shared"/>
      ref='C9:C9' si='0' | A2+$B$2 => <f>A2+$B$2</f>
      si='0' | => <f>A3+$B$2</f> ; si='0' | 7*A1 => <f>7*A1</f> ; si='0' | => <f>A5+$B$2</f>
      si='0' ref='C6:C7' | B1 => <f>B1</f> ; si='0' | => <f>B2</f> ; | B2 => <f>B2</f>
      si='1' | B3 => <f>B3</f> ; si='1' | => <f>B4</f>)")) {
    const std::string row = std::to_string(++number);
    rows += "<row r='" + row + "'><c r='C" + row + "'><f t='shared' " + attributes + ">" + formula +
            "</f></c></row>";
    expected += "<row r=\"" + row + "\"><c r=\"C" + row + "\">" + written + "</c></row>";
  }
  const auto book = clean(testing::plainWorkbook(rows));
  EXPECT_EQ(book.rows(), expected);
  EXPECT_EQ(book.report(),
            "Data 10/10; shared formulas written out 4 4@0; shared formulas without a master 1 1@0");
}

TEST(CellCleaning, StopsAtTheLimitsOfWhatAFormulaMayGrowTo) {
  const auto sharing = [](const std::string& text, int dependents) {
    std::string rows = "<row><c><f t='shared' si='0' ref='A1'>" + text + "</f></c></row>";
    for (int i = 0; i < dependents; ++i)
      rows += "<row><c><f t='shared' si='0'/></c></row>";
    return testing::refusalOf(testing::plainWorkbook(rows));
  };
  const std::string a(8'190, 'a');
  EXPECT_EQ(sharing(a + "+1", 1), "");
  EXPECT_EQ(sharing(a + "+11", 1),
            "resourceLimit: more than 8,192 characters of a formula in cell A2 of sheet Data");
  EXPECT_EQ(sharing(a + a, 0), "");
  EXPECT_EQ(sharing(a, 3'000),
            "resourceLimit: more than 16 MiB of XML in sheet Data, written out up to cell A2038");
}

}  // namespace
}  // namespace zelvo
