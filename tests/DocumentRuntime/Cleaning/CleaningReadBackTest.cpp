// Owns CleaningReadBack, which sees every difference between a source and what was made of it, and
// FormulaTranslation and FormulaUses, whose results it checks.

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cleaning/CleanedBook.hpp"
#include "DocumentRuntime/Cleaning/FormulaTranslation.hpp"
#include "DocumentRuntime/Cleaning/FormulaUses.hpp"
#include "DocumentRuntime/CleaningReadBack/CleaningReadBack.hpp"
#include "DocumentRuntime/CleaningReadBack/FormulaReadBack.hpp"
#include "Support/Cases.hpp"
#include "Support/Cost.hpp"

namespace zelvo {
namespace {

using namespace testing;

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
workbook | date1904="0" | date1904="1" | date system
workbook | <sheet name="Sales" sheetId="1" r:id="rId1"/> | | number of sheets
sharedStrings | Region | Regiom | shared string 0
sharedStrings | <si> | <si/><si> | number of shared strings
styles | numFmtId="14" | numFmtId="15" | number format of cell style 2
styles | formatCode="&quot;$ | formatCode="&quot;€ | number format of cell style 1
worksheets/sheet1 | hidden="1"/></cols> | /></cols> | hidden columns of sheet Sales
worksheets/sheet1 | A6:B6 | A6:B7 | merged areas of sheet Sales
worksheets/sheet1 | <autoFilter ref="A1:E4"/> | | filter of sheet Sales
worksheets/sheet1 | <row r="3" hidden="1"> | <row r="3"> | cell in row 3, column 2 of sheet Sales
worksheets/sheet1 | 1234.5 | 1234.6 | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <c r="B2" s="1"> | <c r="B2" s="2"> | cell in row 2, column 2 of sheet Sales
worksheets/sheet1 | <f>B4*2</f> | <v>1</v> | cell in row 5, column 2 of sheet Sales
worksheets/sheet1 | <v>1227.5</v> | | cell in row 4, column 2 of sheet Sales
worksheets/sheet1 | <row r="5"> | <row r="7"/><row r="5"> | cell in row 5, column 8 of sheet Sales
worksheets/sheet2 | <f>C1</f> | <f>B1</f> | cell in row 10, column 3 of sheet Hidden
worksheets/sheet2 | </sheetData> | <row r="11"/></sheetData> | number of rows of sheet Hidden
)"))
    EXPECT_EQ(difference("xl/" + part + ".xml", from, to), expected) << from;
  const std::vector<std::string> sales = {"Sales"};
  EXPECT_EQ(difference("", "", "", {.sheets = &sales}), "number of sheets");
  EXPECT_EQ(difference("", "", "", {.unmerge = true}), "merged areas of sheet Sales");
}

/// Each formula, moved two rows down and one column right.
constexpr const char* table = R"(
A1+$A1+A$1+$A$1 => B3+$A3+B$1+$A$1 ; sum(a1:B$2,A:C,$A:C,1:3,$1:3) => sum(B3:C$2,B:D,$A:D,3:5,$1:5)
S!A1+S!A1:B2+S!A:A+S!1:1+S!x => S!B3+S!B3:C4+S!B:B+S!3:3+S!x ; S1:S3!A1+S1:S3!A1:B2 => S1:S3!B3+S1:S3!B3:C4
S!A1:S!B2 => S!B3:S!C4 ; 'It''s A1'!A1+'A1:B2'!A1 => 'It''s A1'!B3+'A1:B2'!B3 ; TAX2023+LOG10 => TAY2025+LOH12
[1]S!A1+[1]!x+[1]S1:S2!A1+'[b A1.xlsx]S'!A1 => [1]S!B3+[1]!x+[1]S1:S2!B3+'[b A1.xlsx]S'!B3
T1[A1]+T1[]+T1[[#This Row],[A1]]+[@A1]+[@[A'] A1]]+A1 => T1[A1]+T1[]+T1[[#This Row],[A1]]+[@A1]+[@[A'] A1]]+B3
"A1 ""A1"""&A1 => "A1 ""A1"""&B3 ; 1E5+1.5E-3+.5E1+E5+1E+5 => 1E5+1.5E-3+.5E1+F7+1E+5
LOG10(A1)+ATAN2(A1,B2)+_xlfn.STDEV.S(A1) => LOG10(B3)+ATAN2(B3,C4)+_xlfn.STDEV.S(B3)
TAX2023_x+A1.B+_A1+A1_+\A1+A1x+ÄA1+A1Ä+XFE1+A1048577+A0+TRUE => TAX2023_x+A1.B+_A1+A1_+\A1+A1x+ÄA1+A1Ä+XFE1+A1048577+A0+TRUE
#REF!+#N/A+#DIV/0!+#REF!A1+#NAME?+A1 => #REF!+#N/A+#DIV/0!+#REF!B3+#NAME?+B3
XFD1+A1048575+A1048574:XFD1+XFD:XFD+1048575:1+S!XFD1 => #REF!+#REF!+#REF!+#REF!+#REF!+S!#REF!
2A1+1:A1+A:1+$A+$1+A$+$$A1+A01 => 2A1+1:B3+A:1+$A+$1+A$+$$A1+B3
'A1 => 'A1 ; "A1 => "A1 ; [A1 => [A1 ; S!S!A1 => S!S!B3 ; 2+1:3 => 2+3:5 ; a|'A1'!'A1'+a|A1!A1+A1 => a|'A1'!'A1'+a|A1!A1+B3
)";

TEST(Formula, MovesReferencesAndNothingElse) {
  for (const auto& [formula, expected] : testing::cases<2>(table)) {
    std::string out;
    EXPECT_TRUE(Cleaning::appendMoved(out, formula, 2, 1, 1'000));
    EXPECT_EQ(out, expected);
    EXPECT_TRUE(CleaningReadBack::isMovedCopy(formula, expected, 2, 1)) << formula;
    // A change of any character of the moved text is seen.
    for (std::size_t i = 0; i < expected.size(); ++i) {
      std::string other = expected;
      other[i] = other[i] == '7' ? '8' : '7';
      EXPECT_FALSE(CleaningReadBack::isMovedCopy(formula, other, 2, 1)) << other;
      EXPECT_FALSE(CleaningReadBack::isMovedCopy(formula, expected.substr(0, i), 2, 1)) << i;
    }
    EXPECT_FALSE(CleaningReadBack::isMovedCopy(formula, expected + "A1", 2, 1));
  }
  std::string out;
  EXPECT_TRUE(Cleaning::appendMoved(out, "B3+$B3+A1", -2, -1, 1'000));
  EXPECT_EQ(std::exchange(out, ""), "A1+$B1+#REF!");
  EXPECT_FALSE(Cleaning::appendMoved(out, "A1+A1", 1, 1, 3));
}

TEST(Formula, MovingTakesLinearTime) {
  for (const std::string piece : {"1.", "1:", "A:", "A1!", "A.A", "[", "'", "\"\"", "|", "#", "$", "[A]A:"}) {
    const auto secondsFor = [&](std::size_t pieces) {
      const std::string formula = testing::repeated(piece, pieces);
      return testing::costOf([&] {
               std::string out;
               EXPECT_TRUE(Cleaning::appendMoved(out, formula, 0, 0, formula.size()));
               EXPECT_TRUE(CleaningReadBack::isMovedCopy(formula, out, 0, 0)) << piece;
             })
          .cpuSeconds;
    };
    EXPECT_LT(secondsFor(160'000), 24 * secondsFor(20'000) + 0.1) << piece;
  }
}

TEST(Formula, SaysWhatItUses) {
  Cleaning::FormulaUsesReader reader({"Data", "It's", "S1", "S3"});
  for (const auto& [formula, expected] : testing::cases<2>(R"(
      SUM(A1)+Data!A1+'DATA'!B2+'It''s'!A1+S1:S3!A1+TRUE+_xlpm.x => ; Rate*2 => names ; Data!Rate => names
      [1]S!A1 => books ; '[1]S'!x => books ; T[A] => tables ; [@A] => tables ; Other!A1 => sheets ; S1:S2!A1 => sheets
      #REF!A1 => ; "x"&"WEBSERVICE(" => ; WEBSERVICE(A1) => outside ; _xlfn.webservice("u") => outside
      HYPERLINK(A1) => outside ; _xlfn.IMAGE(A1) => outside ; RTD("p") => outside ; CALL(1) => outside
      REGISTER.ID(1) => outside ; FILTERXML(1,2) => outside ; cmd|'/C calc'!A0 => names outside ; HYPERLINKS(1) => )")) {
    const Cleaning::FormulaUses uses = reader.read(formula);
    std::string found;
    for (const auto& [isUsed, name] : {std::pair(uses.otherWorkbooks, "books"),
                                       {uses.definedNames, "names"},
                                       {uses.tables, "tables"},
                                       {uses.droppedSheets, "sheets"},
                                       {uses.outside, "outside"}})
      if (isUsed) found += (found.empty() ? "" : " ") + std::string(name);
    EXPECT_EQ(found, expected) << formula;
  }
}

}  // namespace
}  // namespace zelvo
