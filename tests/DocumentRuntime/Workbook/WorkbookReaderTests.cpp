// Owns opening and inspecting workbooks: order of checks, limits, facts, time and memory.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"
#include "Support/Cost.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/TableDump.hpp"

namespace zelvo {
namespace {

using testing::outcomeOf;
using testing::PackageBuilder;
using testing::repeated;
using testing::replace;
using testing::WorkbookText;

const std::string sheet1 = "xl/worksheets/sheet1.xml";
const std::string sheet2 = "xl/worksheets/sheet2.xml";
const std::string workbookPart = "xl/workbook.xml";

struct Book {
  PackageBuilder package = testing::workbookPackage(testing::richWorkbook());
  std::string sourceName = "book.xlsx";

  std::string& part(std::string_view name) { return package.part(name).text; }
};
using B = Book&;

WorkbookInspection inspect(const Book& book) {
  return WorkbookReader(book.package.bytes(), book.sourceName).inspection();
}

Book bookOf(const WorkbookText& workbook) {
  return {.package = testing::workbookPackage(workbook)};
}

/// `count` cells, 8,000 a row.
std::string rowsWithCells(std::size_t count) {
  std::string out;
  for (std::size_t row = 1; count > 0; ++row) {
    const std::size_t cells = std::min<std::size_t>(count, 8'000);
    count -= cells;
    out += "<row r='" + std::to_string(row) + "'>";
    for (std::size_t column = 1; column <= cells; ++column)
      out += "<c r='" + columnLetters(static_cast<std::int64_t>(column)) + std::to_string(row) + "'/>";
    out += "</row>";
  }
  return out;
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
  const std::vector<WorksheetInspection> expected = {
      {"Sales", false, "A1:H6", 20, 2, 1, true, true},
      {"Hidden", true, "C9:C9", 1, 0, 0, false, false},
      {.name = "Empty & last"},
  };
  EXPECT_EQ(inspection.sheets, expected);
}

void renameWorkbook(B book) {
  book.package.part(workbookPart).name = "xl/book.xml";
  replace(book.part("_rels/.rels"), workbookPart, "xl/book.xml");
}

std::vector<testing::Refusal<Book>> refusals() {
  const auto in = [](const std::string& part, std::string_view table) {
    return testing::edits<Book>(
        [part](B book) -> auto& { return book.part(part); }, table);
  };
  const auto strings = [](const std::string& from, const std::string& to) {
    return [=](B book) { replace(book.part("xl/sharedStrings.xml"), from, to); };
  };
  return testing::joined<Book>({
      {{"source name", [](B b) { b.sourceName = std::string(513, 'x'); }, "resourceLimit: source name"},
       {"not a package", [](B b) { b.package.remove("[Content_Types].xml"); },
        "invalidArchive: not an OOXML package"}},
      in(sheet2, "</worksheet> => | invalidArchive: malformed XML | sheet2"),
      {{"no workbook part", renameWorkbook, "unsupported: XLSX workbook structure", "workbook"},
       {"not a workbook", [](B b) { b.part(workbookPart) = "<book/>"; },
        "unsupported: only Transitional XLSX is supported", "workbook"}},
      in(workbookPart, R"(
schemas.openxmlformats.org/spreadsheetml/2006/main => purl.oclc.org/ooxml/spreadsheetml/main | unsupported: only Transitional XLSX is supported | workbook
name="Sales" => | invalidArchive: worksheet identity | workbook
r:id="rId1" => | invalidArchive: worksheet identity | workbook
r:id="rId1" => R:id="rId1" | invalidArchive: worksheet identity | workbook
r:id="rId1" => r:id="rId9" | invalidArchive: worksheet identity | workbook
name="Hidden" => name="SALES" | invalidArchive: worksheet identity | workbook
<sheets> => <sheets/><sheets> | resourceLimit: worksheet count | workbook)"),
      {{"string", strings("Region", std::string(32'769, 's')), "resourceLimit: shared strings", "strings"},
       {"strings", strings("<si>", repeated("<si/>", 50'000) + "<si>"), "resourceLimit: shared strings",
        "strings"}},
      in("xl/styles.xml", R"(
numFmtId="164" => | invalidArchive: number format | styles
numFmtId="164" => numFmtId="164.0" | invalidArchive: number format | styles
formatCode => code | invalidArchive: number format | styles
</numFmts> => <numFmt numFmtId="164" formatCode="0"/></numFmts> | invalidArchive: number format | styles)"),
      {{"chart sheet", [](B b) { b.part(sheet1) = "<chartsheet/>"; }, "unsupported: worksheet type",
        "sheet1"}},
      in(sheet1, R"(
<row r="1"> => <row> | invalidArchive: worksheet row identity | sheet1/row1
<row r="1"> => <row r="0"> | invalidArchive: worksheet row identity | sheet1/row1
<row r="1"> => <row r="1048577"> | invalidArchive: worksheet row identity | sheet1/row1
<row r="1"> => <row r="+1"> | invalidArchive: worksheet row identity | sheet1/row1
r="A1" => r="A2" | invalidArchive: duplicate cell or mismatched row | sheet1/row1
r="C1" => r="$a$1" | invalidArchive: duplicate cell or mismatched row | sheet1/row1
<c r="A2" => <c | invalidArchive: cell without address | sheet1/A2
r="B2" => r="XFE2" | invalidSelection: cell address bounds | sheet1/B2
<row r="5"> => <row r="1"> | invalidArchive: worksheet row identity | sheet1/row5
ref="A6:B6" => ref="B6:A6" | invalidSelection: reversed range | sheet1/merged)"),
      in(sheet2, R"(<row r="9"> => <row r="x"> | invalidArchive: worksheet row identity | sheet2)"),
  });
}

TEST(WorkbookReader, RefusesInTheOrderOfItsChecks) {
  testing::expectRefusals<Book>([] { return Book(); }, refusals(), inspect);
}

TEST(WorkbookReader, AcceptsEachLimitAndRefusesOneMore) {
  using Size = std::size_t;
  const auto strings = [](std::size_t count, const std::string& text) {
    return bookOf({.sheets = {{"S", ""}}, .sharedStrings = {count, "<t>" + text + "</t>"}});
  };
  // Names are measured in user-perceived characters.
  const std::vector<testing::Limit<Book>> limits = {
      {"sheets", maximumSheets, "resourceLimit: worksheet count",
       [](B b, Size n) {
         WorkbookText workbook;
         while (n-- > 0)
           workbook.sheets.push_back({"S" + std::to_string(n), ""});
         b = bookOf(workbook);
       }},
      {"sheet name", maximumSheetNameCharacters, "invalidArchive: worksheet identity",
       [](B b, Size n) {
         b = bookOf({.sheets = {{testing::characters(n), ""}}});
       }},
      {"shared strings", SharedStrings::maximumItems, "resourceLimit: shared strings",
       [&](B b, Size n) { b = strings(n, "a"); }},
      {"shared string", SharedStrings::maximumCharacters, "resourceLimit: shared strings",
       [&](B b, Size n) { b = strings(1, repeated("é", n)); }},
      {"format code", CellStyles::maximumCodeCharacters, "invalidArchive: number format",
       [](B b, Size n) {
         b = bookOf({.sheets = {{"S", ""}},
                     .styles = "<numFmts><numFmt numFmtId='164' formatCode='" + std::string(n, '0') +
                               "'/></numFmts>"});
       }},
      {"cells", maximumWorksheetCells, "resourceLimit: populated cell count",
       [](B b, Size n) { b = bookOf(testing::plainWorkbook(rowsWithCells(n))); }},
      {"source name", WorkbookReader::maximumSourceNameBytes, "resourceLimit: source name",
       [](B b, Size n) { b.sourceName = std::string(n - 2, 'x') + "é"; }},
  };
  testing::expectLimits(limits, inspect);
}

TEST(WorkbookReader, ReadsPropertiesAndVisibility) {
  for (const auto& [date1904, expected] :
       testing::cases<2>("1 => 1904 ; true => 1904 ; 0 => 1900 ; yes => 1900 ; TRUE => 1900 ; => 1900")) {
    const std::string properties = "<workbookPr date1904='" + date1904 + "'/>";
    const auto inspection = inspect(bookOf({.sheets = {{"S", ""}}, .properties = properties}));
    EXPECT_EQ(inspection.dateSystem, expected) << date1904;
    EXPECT_EQ(inspection.calculationMode, "auto");
  }
  for (const auto& [state, hidden] :
       testing::cases<2>("visible => no ; hidden => yes ; veryHidden => yes ; => yes")) {
    const auto inspection = inspect(bookOf({.sheets = {{"S", "", " state='" + state + "'"}}}));
    EXPECT_EQ(inspection.sheets[0].hidden, hidden == "yes") << state;
  }
}

TEST(WorkbookReader, CountsTheContentsOfASheet) {
  const std::pair<std::string, WorksheetInspection> rows[] = {
      {"", {}},
      {"<sheetData><row r='1'/></sheetData>", {}},
      {"<sheetData><row r='7'><c r='B7'/></row><row r='2'><c r='D2'/></row></sheetData>",
       {.populatedRange = "B2:D7", .populatedCellCount = 2}},
      {"<sheetData><row r='1'><c r='A1'><f/><v>1</v></c><c r='B1'><f>A1</f></c><c r='C1'><f/><v></v></c>"
       "<c r='D1'><f/><v><x>1</x></v></c></row></sheetData>",
       {"", false, "A1:D1", 4, 4, 2, false, false}},
      {"<sheetData><row r='3' hidden='true'/></sheetData>", {.hasHiddenRowsOrColumns = true}},
      {"<sheetData><row r='3' hidden='0'/></sheetData>", {}},
      {"<cols><col min='2' max='2' hidden='1'/></cols>", {.hasHiddenRowsOrColumns = true}},
      {"<cols><col min='3' max='2' hidden='1'/><col min='x' max='2' hidden='1'/><col hidden='1'/></cols>",
       {}},
      {"<cols><col min='2' max='2' hidden='false'/></cols>", {}},
      {"<mergeCells><mergeCell/></mergeCells><autoFilter/>", {.hasAutoFilter = true}},
  };
  for (const auto& [content, counts] : rows) {
    WorksheetInspection expected = counts;
    expected.name = "S";
    EXPECT_EQ(inspect(bookOf({.sheets = {{"S", content}}})).sheets.front(), expected) << content;
  }
}

TEST(WorkbookReader, SheetsMayShareAPartAndStrayPartsAreNotRead) {
  Book book;
  replace(book.part("xl/_rels/workbook.xml.rels"), "worksheets/sheet2.xml", "worksheets/sheet1.xml");
  book.part(sheet2) = "<worksheet><sheetData><row/></sheetData></worksheet>";
  const auto inspection = inspect(book);
  EXPECT_EQ(inspection.sheets[0].populatedRange, inspection.sheets[1].populatedRange);
}

TEST(WorkbookReader, ParsesPartsAgainThatAreNotCached) {
  WorkbookText workbook = testing::richWorkbook();
  workbook.sheets[1].attributes.clear();
  const auto tables = [&](std::size_t keptTreeBytes) {
    const WorkbookReader reader(testing::workbookPackage(workbook).bytes(), "b.xlsx", {}, keptTreeBytes);
    return testing::dump(reader.table({"Sales", "A1:E4", true, true, true})) +
           testing::dump(reader.table({"Hidden", "A9:C9", false, false, false})) +
           testing::dump(reader.table({"Empty & last", "A1:B2", false, false, false}));
  };
  const std::string kept = tables(OOXML::KeptTrees::defaultBudgetBytes);
  EXPECT_NE(kept.find("C9 number 1"), std::string::npos);
  // Nothing is kept, or the smaller sheets alone.
  for (const std::size_t bytes : {0U, 1'000U})
    EXPECT_EQ(tables(bytes), kept) << bytes;
}

TEST(WorkbookReader, ResolvesATargetOnceForAllSheetsThatShareIt) {
  const auto secondsFor = [](std::size_t count) {
    Book book = bookOf({.sheets = {{"S", ""}}});
    replace(book.part("xl/_rels/workbook.xml.rels"), "worksheets/",
            repeated("./", 1'000'000) + "worksheets/");
    const std::string sheet = R"(<sheet name="S" sheetId="1" r:id="rId1"/>)";
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
      all += testing::replaced(sheet, "S", "S" + std::to_string(i));
    replace(book.part(workbookPart), sheet, all);
    const ByteBuffer bytes = book.package.bytes();
    return testing::costOf([&] {
             EXPECT_EQ(outcomeOf([&] { WorkbookReader(ByteBuffer::copyOf(bytes.view()), "b.xlsx"); }),
                       count > maximumSheets ? "resourceLimit: worksheet count" : "");
           })
        .cpuSeconds;
  };
  EXPECT_LT(secondsFor(200), 10 * secondsFor(1));
}

TEST(WorkbookReader, UsesMemoryInProportionToTheSheetList) {
  Book book = bookOf({.sheets = {{"S", ""}}});
  std::string all;
  for (std::size_t i = 0; i < 100'000; ++i)
    all.append(R"(<sheet name=")").append(std::to_string(i)).append(R"(" r:id="rId1"/>)");
  replace(book.part(workbookPart), "<sheets>", "<sheets>" + all);
  ByteBuffer bytes = book.package.bytes();
  const auto cost = testing::costOf([&] {
    EXPECT_EQ(outcomeOf([&] { WorkbookReader(std::move(bytes), "b.xlsx"); }),
              "resourceLimit: worksheet count");
  });
  EXPECT_LT(cost.peakBytes, 7 * all.size());
}

}  // namespace
}  // namespace zelvo
