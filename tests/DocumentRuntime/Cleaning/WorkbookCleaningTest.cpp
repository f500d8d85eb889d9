// Whole workbooks: what is followed, reported, refused and verified.

#include <map>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cleaning/CleanedBook.hpp"
#include "DocumentRuntime/Cleaning/PlainFormats.hpp"
#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "Support/Cancellation.hpp"
#include "Support/Cases.hpp"
#include "Text/Digest.hpp"

namespace zelvo {
namespace {

using namespace testing;

const std::string workbookPart = "xl/workbook.xml";
const std::string workbookLinks = "xl/_rels/workbook.xml.rels";

PackageBuilder rich() {
  return testing::workbookPackage(testing::richWorkbook());
}

/// The text of a cell, as XML, in a sheet of its own.
std::string cell(const std::string& xml) {
  return "<sheetData><row r='1'>" + xml + "</row></sheetData>";
}

TEST(WorkbookCleaning, ReportsWhatItLeavesOut) {
  PackageBuilder package = rich();
  for (const auto& [name, type, text] : testing::cases<3>(R"(
      xl/media/image1.png | image/png | x ; xl/media/image2.png | image/png | x ; docProps/thumbnail.jpeg | image/jpeg | x
      xl/printerSettings/p.bin | application/vnd.openxmlformats-officedocument.spreadsheetml.printerSettings | x
      xl/comments1.xml | application/vnd.openxmlformats-officedocument.spreadsheetml.comments+xml | x
      xl/vbaProject.bin | application/vnd.ms-office.vbaProject | x ; xl/strange.bin | application/octet-stream | x
      xl/drawings/v1.vml | application/unknown | x ; xl/worksheets/_rels/sheet1.xml.rels | application/xml | <not␠&␠parsed)")) {
    package.part(name).text = text;
    replace(package.part("[Content_Types].xml").text, "</Types>",
            R"(<Override PartName="/)" + name + R"(" ContentType=")" + type + R"("/></Types>)");
  }
  replace(
      package.part("xl/worksheets/sheet1.xml").text, "</worksheet>",
      "<hyperlinks><hyperlink/><hyperlink/></hyperlinks><headerFooter/><sheetProtection sheet='1'/><drawing/>"
      "<x:new xmlns:x='u'/><surprise/><extLst/></worksheet>");
  replace(package.part(workbookPart).text, "</workbook>",
          "<definedNames><definedName/></definedNames></workbook>");
  const CleanedBook book = clean(package);
  EXPECT_EQ(book.cleaned.sourceSHA256, Digest::sha256(package.bytes().view()));
  EXPECT_EQ(book.cleaned.outputSHA256, Digest::sha256(book.cleaned.data.view()));
  EXPECT_EQ(
      book.report(),
      "Sales 19/2; Hidden 1/0; Empty & last 0/0; pictures 2 [xl/media/image1.png] [xl/media/image2.png]; "
      "comments 1 [xl/comments1.xml]; legacy drawings 1 [xl/drawings/v1.vml]; "
      "printer settings 1 [xl/printerSettings/p.bin]; macros 1 [xl/vbaProject.bin]; "
      "document properties 1 [docProps/thumbnail.jpeg]; relationships 1 "
      "[xl/worksheets/_rels/sheet1.xml.rels]; "
      "other parts 1 [xl/strange.bin]; hyperlinks 2 2@0; defined names 1; protection 1 1@0; phonetic runs 1; "
      "empty cells 1 1@0; extension lists 1 1@0; foreign elements 1 1@0; other elements 1 1@0");
  EXPECT_EQ(
      droppedInWords(book.cleaned.report),
      "2 pictures, comments of 1 sheet, printer settings of 1 sheet, macros, 1 other part, 2 hyperlinks, "
      "1 defined name, protection, 1 phonetic run, 1 other element");
}

TEST(WorkbookCleaning, ReportsFormulasThatNeedWhatIsGone) {
  const auto book = clean({.sheets = {{"Data", cell("<c><f>Rate*Gone!A1</f></c><c><f>WEBSERVICE(T[A])</f></c>"
                                                    "<c vm='1'><f>[1]S!A1</f></c>")}}});
  EXPECT_EQ(book.report(),
            "Data 3/3; rich values 1 1@0; implied positions 3 3@0; formulas that name other workbooks 1 1@0; "
            "formulas that use defined names 1 1@0; formulas that use tables 1 1@0; "
            "formulas that name dropped sheets 1 1@0; formulas that reach out 1 1@0");
}

TEST(WorkbookCleaning, TakesEveryKindOfWorkbook) {
  const std::string counts = "Sales 19/2; Hidden 1/0; Empty & last 0/0";
  const std::string usual = "; phonetic runs 1; empty cells 1 1@0";
  // The part to edit, or all of them; what is kept of the workbook's own part; the report, what it has
  // beside the usual ("+"), or the refusal.
  for (auto [part, from, to, kept, expected] : testing::cases<5>(R"(
workbook | date1904="0" | date1904="true" | <workbookPr date1904="true"/> |
workbook | date1904="0" | date1904="on" | main" xmlns:r= | +attributes with a wrong value 1
workbook | state="hidden" | state="veryHidden" | <sheet name="Hidden" sheetId="2" state="veryHidden" r:id="rId2"/> |
workbook | xmlns:r= | xmlns:q= | | invalidArchive: worksheet identity
workbook | "Hidden" | "SALES" | | invalidArchive: too long or repeated name of sheet SALES
workbook | <sheets> | <sheets/><sheets> | | invalidArchive: repeated element "sheets" in the workbook
all | schemas.openxmlformats.org/spreadsheetml/2006/main | purl.oclc.org/ooxml/spreadsheetml/main | schemas.openxmlformats.org/spreadsheetml/2006/main | +strict conformance 1
all | /worksheet" | /chartsheet" | | unsupported: no worksheet is left
types | vnd.openxmlformats-officedocument.spreadsheetml.sheet.main | vnd.ms-excel.sheet.macroEnabled.main | | +workbook type 1
types | vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml | vnd.ms-excel.sheet.binary.macroEnabled.main | | unsupported: binary workbook (.xlsb)
package | http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument" Target=" | urn:officeDocument" Target="no | |
package | xl/workbook.xml | xl/styles.xml | | invalidArchive: two parts of the type officeDocument
links | worksheet" Target="worksheets/sheet1 | chartsheet" Target="worksheets/sheet1 | <sheet name="Hidden" sheetId="1" state="hidden" r:id="rId1"/> | Hidden 1/0; Empty & last 0/0; worksheets 1 [xl/worksheets/sheet1.xml]; chart sheets 1 "Sales"; phonetic runs 1
links | sheet1.xml" | sheet1.xml" TargetMode="External" | | unsafeContent: external or ambiguous relationship
links | sheet1.xml | sheet9.xml | | invalidArchive: missing relationship target
styles | </numFmts> | <numFmt numFmtId='164' formatCode='0'/></numFmts> | | invalidArchive: number format 164 in the styles
styles | <xf numFmtId="14"/> | <xf numFmtId="14"><value/></xf> | | unsupported: unknown element in cell style 2
)")) {
    static const std::map<std::string, std::string> names = {{"workbook", workbookPart},
                                                             {"links", workbookLinks},
                                                             {"package", "_rels/.rels"},
                                                             {"types", "[Content_Types].xml"},
                                                             {"styles", "xl/styles.xml"}};
    PackageBuilder package = rich();
    if (part != "all") replace(package.part(names.at(part)).text, from, to);
    for (auto& each : package.parts)
      if (part == "all" && each.text.find(from) != std::string::npos) replaceAll(each.text, from, to);
    std::string outcome;
    const auto refusal = testing::outcomeOf([&, &kept = kept] {
      const CleanedBook book = clean(package);
      outcome = book.report();
      EXPECT_NE(book.parts.find(workbookPart)->text().find(kept), std::string::npos) << kept;
    });
    if (expected.empty()) expected = counts + usual;
    if (expected[0] == '+') expected.replace(0, 1, counts + usual + "; ");
    EXPECT_EQ(refusal.text + outcome, expected) << to;
  }

  EXPECT_EQ(testing::outcomeOf([] {
              cleanWorkbook(ByteBuffer::copyOf("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1 and more"), "a.xlsx");
            }),
            "unsupported: encrypted or old binary workbook (compound file)");
  EXPECT_EQ(testing::outcomeOf([] { cleanWorkbook({}, std::string(513, 'a')); }),
            "resourceLimit: source name");
  EXPECT_THROW(cleanWorkbook(rich().bytes(), "a.xlsx", {}, testing::stopped()), Cancelled);
}

TEST(WorkbookCleaning, KeepsTheSheetsThatAreAskedFor) {
  PackageBuilder package = rich();
  package.part("xl/worksheets/sheet1.xml").text = "<no & XML";
  EXPECT_EQ(refusalOf(package), "invalidArchive: malformed XML in sheet Sales");
  EXPECT_EQ(clean(package, {.sheets = {{"Hidden"}}}).report(),
            "Hidden 1/0; worksheets 2 [xl/worksheets/sheet1.xml] [xl/worksheets/sheet3.xml] \"Sales\" "
            "\"Empty & last\"; phonetic runs 1");
  EXPECT_EQ(refusalOf(package, {.sheets = {{"Hidden", "hidden"}}}),
            "invalidSelection: no worksheet is named hidden");
}

TEST(WorkbookCleaning, RemovesMergedAreasAndCountsWhatTheyCovered) {
  const CleanedBook book = clean(
      {.sheets = {{"Data", cell("<c><v>1</v></c><c><v>2</v></c><c/><c><v>3</v></c></row><row>") +
                               "<mergeCells><mergeCell ref='A1:C1'/><mergeCell ref='B1:B9'/></mergeCells>"}}},
      {.unmerge = true});
  EXPECT_EQ(book.report(),
            "Data 3/0; empty cells 1 1@0; empty rows 1 1@0; implied positions 5 5@0; merged areas removed 2 "
            "2@0; covered cells 1 1@0");
}

TEST(WorkbookCleaning, ReplacesFormatsThatTheReaderCannotShow) {
  for (const auto& [code, expected] : testing::cases<2>(R"(
      0.00 => ; General => ; @ => ; dd.mm.yy => ; h:mm => ; "$"0 => ; m/d/yyyy => yyyy-mm-dd ; mmmm => yyyy-mm-dd
      d/m h:mm => yyyy-mm-dd hh:mm:ss ; yyyy\-mm\-dd\ hh:mm;@ => yyyy-mm-dd hh:mm:ss ; mmm h => yyyy-mm-dd hh:mm:ss
      [$-409]h:mm AM/PM;@ => h:mm:ss ; mmss.0 => h:mm:ss ; h"x"mm => h:mm:ss ; H.MM => h:mm:ss ; a/p h => h:mm:ss
      [h]:mm => ; [MM]:ss => ; [s] => ; [hm] => General ; [Red]0 => General ; 0.00E+00 => General ; # ?/? => General
      0;yyyy => General ; 0" days" => General ; 0\d => General ; 0_d => General ; *d0 => General ; "d => General
      [d => General ; GENERAL => General ; #,##0.00;[Red]-#,##0.00 => General)")) {
    EXPECT_EQ(Cleaning::plainCode(code).value_or(""), expected) << code;
    // The read-back, which finds the plain form by itself, agrees.
    const std::string formats =
        "<numFmts><numFmt numFmtId='164' formatCode=\"" + OOXML::escaped(code) + "\"/></numFmts>";
    clean({.sheets = {{"S", cell("<c s='0'><v>1</v></c>")}},
           .styles = formats + "<cellXfs><xf numFmtId='164'/></cellXfs>"},
          {.plainFormats = true});
  }

  std::string builtins;
  for (std::int64_t id = 26; id < 60; ++id)
    builtins += Cleaning::plainCodeOfBuiltin(id).value_or("-").front();
  EXPECT_EQ(builtins, "Gyyyyyhh--yGGGGGGGGGGGGGyyyyy--yyG");

  WorkbookText workbook = {
      .sheets = {{"A", cell("<c s='1'><v>45000</v></c><c s='1'/><c s='2'><v>2</v></c>")},
                 {"B", cell("<c s='1'><v>1</v></c><c s='3'><v>3</v></c><c s='4'><v>3</v></c>")}},
      .styles = R"(<numFmts><numFmt numFmtId="164" formatCode="m/d/yyyy"/>
                             <numFmt numFmtId="165" formatCode="[h]:mm"/></numFmts><cellXfs><xf numFmtId="0"/>
                             <xf numFmtId="164"/><xf numFmtId="44"/><xf numFmtId="165"/><xf numFmtId="31"/><xf/></cellXfs>)"};
  const CleanedBook book = clean(workbook, {.plainFormats = true});
  EXPECT_EQ(book.part("xl/styles.xml", "<cellXfs>", R"(<xf numFmtId="167")"),
            R"(<xf numFmtId="0"/><xf numFmtId="166" applyNumberFormat="1"/>)");
  EXPECT_EQ(
      book.report(),
      "A 2/0; B 3/0; empty cells 1 1@0; implied positions 6 3@0 3@1; number formats 2 1@0 1@1 "
      "{m/d/yyyy}; number formats 1 1@0 {built-in format 44}; number formats 1 1@1 {built-in format 31}");
}

TEST(WorkbookCleaning, StopsAtTheReadersLimitsAndNamesTheSheet) {
  using Size = std::size_t;
  using W = WorkbookText&;
  const auto fillWithCells = [](W w, Size count) {
    const std::string row = "<row>" + repeated("<c><v>1</v></c>", 5'000) + "</row>";
    w = testing::plainWorkbook(repeated(row, count / 5'000) + "<row>" +
                               repeated("<c><v>1</v></c>", count % 5'000) + "</row>");
  };
  const auto fillWithStrings = [](W w, Size count, const std::string& text) {
    w = {.sheets = {{"Data", ""}}, .sharedStrings = {count, "<t>" + text + "</t>"}};
  };
  testing::expectLimits<WorkbookText>(
      {{"cells", 50'000, "resourceLimit: more than 50,000 cells in sheet Data", fillWithCells},
       // Written, ">" takes four bytes. The first formula is shared with the second.
       {"bytes", 130, "resourceLimit: more than 16 MiB of XML in sheet Data",
        [&](W w, Size n) {
          w = testing::plainWorkbook(
              "<row><c><f t='shared' si='0' ref='A1'>1</f></c><c><f t='shared' si='0'/></c></row>" +
              repeated("<row><c t='inlineStr'><is><t>" + std::string(32'000, '>') + "</t></is></c></row>",
                       n));
        }},
       {"strings", 50'000, "resourceLimit: more than 50,000 shared strings",
        [&](W w, Size n) { fillWithStrings(w, n, "a"); }},
       {"string", 32'768, "resourceLimit: more than 32,768 characters in shared string 1",
        [&](W w, Size n) { fillWithStrings(w, 1, std::string(n, 'a')); }},
       {"sheets", 64, "resourceLimit: more than 64 worksheets",
        [](W w, Size n) {
          for (Size i = 0; i < n; ++i)
            w.sheets.push_back({"S" + std::to_string(i), ""});
        }},
       {"name", 64, "invalidArchive: too long or repeated name of sheet " + testing::characters(65),
        [](W w, Size n) {
          w.sheets.push_back({testing::characters(n), ""});
        }},
       {"code", 256, "resourceLimit: more than 256 characters in number format 164",
        [](W w, Size n) {
          w = testing::plainWorkbook("");
          w.styles = "<numFmts><numFmt numFmtId='164' formatCode='" + std::string(n, '0') +
                     "'/></numFmts><cellXfs><xf numFmtId='164'/></cellXfs>";
        }}},
      [](const WorkbookText& workbook) {
        cleanWorkbook(testing::workbookPackage(workbook).bytes(), "a.xlsx");
      });
}

}  // namespace
}  // namespace zelvo
