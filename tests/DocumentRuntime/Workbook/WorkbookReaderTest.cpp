// Owns opening and inspecting workbooks: order of checks, limits, facts, time and memory.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"
#include "Support/Cost.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

namespace zelvo {
namespace {

using namespace testing;

struct Book {
  PackageBuilder package = workbookPackage(richWorkbook());
  std::string sourceName = "book.xlsx";

  std::string& part(std::string_view name) { return package.part(name).text; }
};
using B = Book&;

WorkbookInspection inspect(const Book& book) {
  return WorkbookReader(book.package.bytes(), book.sourceName).inspection();
}

Book bookOf(const WorkbookText& workbook) {
  return {.package = workbookPackage(workbook)};
}

TEST(WorkbookReader, InspectsARichWorkbook) {
  const WorkbookInspection inspection = inspect({.sourceName = "folder/Süd.xlsx/"});
  EXPECT_EQ(inspection.sourceName, "Süd.xlsx");
  EXPECT_EQ(inspection.sourceSHA256.size(), 64U);
  EXPECT_EQ(inspection.dateSystem, "1900");
  EXPECT_EQ(inspection.calculationMode, "manual");
  EXPECT_EQ(inspection.warnings,
            (std::vector<std::string>{"Reads the saved file snapshot. Unsaved Office edits are not included.",
                                      "Formula caches are never treated as freshly recalculated values."}));
  const std::vector<WorksheetInspection> expected = {{"Sales", false, "A1:H6", 20, 2, 1, true, true},
                                                     {"Hidden", true, "C9:C9", 1, 0, 0, false, false},
                                                     {.name = "Empty & last"}};
  EXPECT_EQ(inspection.sheets, expected);
}

TEST(WorkbookReader, RefusesInTheOrderOfItsChecks) {
  const auto in = [](const std::string& part, std::string_view table) {
    return edits<Book>(
        [part](B book) -> auto& { return book.part(part); }, table);
  };
  const auto renameWorkbook = [](B book) {
    book.package.part("xl/workbook.xml").name = "xl/book.xml";
    replace(book.part("_rels/.rels"), "xl/workbook.xml", "xl/book.xml");
  };
  const auto rows = joined<Book>({
      {{"source name", [](B b) { b.sourceName = std::string(513, 'x'); }, "resourceLimit: source name"},
       {"not a package", [](B b) { b.package.remove("[Content_Types].xml"); },
        "invalidArchive: not an OOXML package"}},
      in("xl/worksheets/sheet2.xml", "</worksheet> => | invalidArchive: malformed XML | sheet2"),
      {{"no workbook part", renameWorkbook, "unsupported: XLSX workbook structure", "workbook"},
       {"not a workbook", [](B b) { b.part("xl/workbook.xml") = "<book/>"; },
        "unsupported: only Transitional XLSX is supported", "workbook"}},
      in("xl/workbook.xml", R"(
schemas.openxmlformats.org/spreadsheetml/2006/main => urn:x | unsupported: only Transitional XLSX is supported | workbook
name="Sales" => | invalidArchive: worksheet identity | workbook
r:id="rId1" => or R:id="rId1" or r:id="rId9" | invalidArchive: worksheet identity | workbook
name="Hidden" => name="SALES" | invalidArchive: worksheet identity | workbook
<sheets> => <sheets/><sheets> | resourceLimit: worksheet count | workbook)"),
      {{"strings",
        [](B b) { replace(b.part("xl/sharedStrings.xml"), "<si>", repeated("<si/>", 50'000) + "<si>"); },
        "resourceLimit: shared strings", "strings"}},
      in("xl/styles.xml", R"(
numFmtId="164" => or numFmtId="164.0" | invalidArchive: number format | styles
formatCode => code | invalidArchive: number format | styles
</numFmts> => <numFmt numFmtId="164" formatCode="0"/></numFmts> | invalidArchive: number format | styles)"),
      {{"chart sheet", [](B b) { b.part("xl/worksheets/sheet1.xml") = "<chartsheet/>"; },
        "unsupported: worksheet type", "sheet1"}},
      in("xl/worksheets/sheet1.xml", R"(
<row r="1"> => <row> or <row r="0"> or <row r="1048577"> or <row r="+1"> | invalidArchive: worksheet row identity | sheet1/row1
r="A1" => r="A2" | invalidArchive: duplicate cell or mismatched row | sheet1/row1
r="C1" => r="$a$1" | invalidArchive: duplicate cell or mismatched row | sheet1/row1
<c r="A2" => <c | invalidArchive: cell without address | sheet1/A2
r="B2" => r="XFE2" | invalidSelection: cell address bounds | sheet1/B2
<row r="5"> => <row r="1"> | invalidArchive: worksheet row identity | sheet1/row5
ref="A6:B6" => ref="B6:A6" | invalidSelection: reversed range | sheet1/merged)"),
      in("xl/worksheets/sheet2.xml",
         R"(<row r="9"> => <row r="x"> | invalidArchive: worksheet row identity | sheet2)"),
  });
  expectRefusals<Book>([] { return Book(); }, rows, inspect);
}

TEST(WorkbookReader, RefusesOneMoreThanEachLimit) {
  std::vector<Limit<Book>> limits = {{"source name", 512, "resourceLimit: source name",
                                      [](B b, auto n) { b.sourceName = std::string(n - 2, 'x') + "é"; }}};
  // Names and texts are measured in characters; the workbook has some sheets, strings and cells already.
  for (const auto& [part, from, to, last, error] : cases<5>(R"(
      workbook | <sheets> => <sheets>#<sheet name="S%" r:id="rId1"/># | 61 | resourceLimit: worksheet count
      workbook | "Sales" => "#é#" | 64 | invalidArchive: worksheet identity
      sharedStrings | <si> => #<si/>#<si> | 49997 | resourceLimit: shared strings
      sharedStrings | Region => #é# | 32768 | resourceLimit: shared strings
      styles | formatCode=" => formatCode="#é# | 245 | invalidArchive: number format
      worksheets/sheet1 | </sheetData> => #<row r="1%"><c r="A1%"/></row>#</sheetData> | 49980 | resourceLimit: populated cell count)"))
    limits.push_back({part, std::stoul(last), error, [=, part = part, from = from, to = to](B b, auto n) {
                        replace(b.part("xl/" + part + ".xml"), from, filled(to, n));
                      }});
  expectLimits(limits, inspect);
}

TEST(WorkbookReader, ReadsPropertiesAndVisibility) {
  for (const auto& [date1904, state, dateSystem, hidden] : cases<4>(R"(
      1 | visible => 1904 | no ; true | hidden => 1904 | yes ; 0 | veryHidden => 1900 | yes
      yes | => 1900 | yes ; TRUE | visible => 1900 | no ; | visible => 1900 | no)")) {
    const auto inspection = inspect(bookOf({.sheets = {{"S", "", " state='" + state + "'"}},
                                            .properties = "<workbookPr date1904='" + date1904 + "'/>"}));
    EXPECT_EQ(inspection.dateSystem, dateSystem) << date1904;
    EXPECT_EQ(inspection.sheets[0].hidden, hidden == "yes") << state;
    EXPECT_EQ(inspection.calculationMode, "auto");
  }
}

TEST(WorkbookReader, CountsTheContentsOfASheet) {
  // The populated range, the cells, formulas and formulas without a result, what is hidden, and the filter.
  for (const auto& [content, expected] : cases<2>(R"(
      => 0 0 0 ; <sheetData><row r='1'/></sheetData> => 0 0 0
      <sheetData><row r='7'><c r='B7'/></row><row r='2'><c r='D2'/></row></sheetData> => B2:D7 2 0 0
      <sheetData><row r='1'><c r='A1'><f/><v>1</v></c><c r='B1'><f>A1</f></c></row></sheetData> => A1:B1 2 2 1
      <sheetData><row r='3' hidden='true'/></sheetData> => 0 0 0 hidden
      <cols><col min='2' max='2' hidden='1'/></cols> => 0 0 0 hidden
      <cols><col min='3' max='2' hidden='1'/><col min='x' max='2' hidden='1'/><col hidden='1'/></cols> => 0 0 0
      <mergeCells><mergeCell/></mergeCells><autoFilter/> => 0 0 0 filter)")) {
    const WorksheetInspection sheet = inspect(bookOf({.sheets = {{"S", content}}})).sheets.front();
    std::string found = sheet.populatedRange ? *sheet.populatedRange + " " : "";
    for (const auto count : {sheet.populatedCellCount, sheet.formulaCellCount, sheet.formulasMissingCache})
      found += std::to_string(count) + " ";
    found += sheet.hasHiddenRowsOrColumns ? "hidden" : sheet.hasAutoFilter ? "filter" : "";
    EXPECT_EQ(found, expected + (expected.ends_with('0') || expected.ends_with('1') ? " " : "")) << content;
  }
}

TEST(WorkbookReader, ParsesPartsAgainThatAreNotKept) {
  WorkbookText workbook = richWorkbook();
  workbook.sheets[1].attributes.clear();
  const auto tables = [&](std::size_t keptTreeBytes) {
    const WorkbookReader reader(workbookPackage(workbook).bytes(), "b.xlsx", {}, keptTreeBytes);
    return dump(reader.table({"Sales", "A1:E4", true, true, true})) +
           dump(reader.table({"Hidden", "A9:C9", false, false, false})) +
           dump(reader.table({"Empty & last", "A1:B2", false, false, false}));
  };
  const std::string kept = tables(OOXML::KeptTrees::defaultBudgetBytes);
  EXPECT_NE(kept.find("C9 number 1"), std::string::npos);
  // Nothing is kept, or the smaller sheets alone.
  for (const std::size_t bytes : {0U, 1'000U})
    EXPECT_EQ(tables(bytes), kept) << bytes;
}

TEST(WorkbookReader, ReadsALongSheetListInLinearTimeAndMemory) {
  const auto costOfSheets = [](std::size_t count, std::size_t targetBytes) {
    Book book = bookOf({.sheets = {{"S", ""}}});
    replace(book.part("xl/_rels/workbook.xml.rels"), "worksheets/",
            repeated("./", targetBytes / 2) + "worksheets/");
    replace(book.part("xl/workbook.xml"), "<sheets>",
            filled(R"(<sheets>#<sheet name="%" r:id="rId1"/>#)", count));
    const std::size_t listBytes = book.part("xl/workbook.xml").size();
    ByteBuffer bytes = book.package.bytes();
    const auto cost = costOf([&] {
      EXPECT_EQ(outcomeOf([&] { WorkbookReader(std::move(bytes), "b.xlsx"); }),
                count < maximumSheets ? "" : "resourceLimit: worksheet count");
    });
    return std::pair(cost, listBytes);
  };
  // The target that all share is resolved once.
  EXPECT_LT(costOfSheets(200, 2'000'000).first.cpuSeconds, 10 * costOfSheets(1, 2'000'000).first.cpuSeconds);
  const auto [cost, listBytes] = costOfSheets(100'000, 2);
  EXPECT_LT(cost.peakBytes, 7 * listBytes);
}

}  // namespace
}  // namespace zelvo
