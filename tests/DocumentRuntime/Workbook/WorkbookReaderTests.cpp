#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::errorOf;
using testing::PackageBuilder;
using testing::WorkbookText;

const std::string sheet1 = "xl/worksheets/sheet1.xml";
const std::string sheet2 = "xl/worksheets/sheet2.xml";
const std::string workbookPart = "xl/workbook.xml";
const std::string stylesPart = "xl/styles.xml";

struct Book {
  PackageBuilder package = testing::workbookPackage(testing::richWorkbook());
  std::string sourceName = "book.xlsx";

  /// Changes the one place in a part where `from` stands.
  void change(std::string_view part, std::string_view from, std::string_view to) {
    std::string& text = package.part(part).text;
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from << " in " << part;
    text.replace(at, from.size(), to);
  }
};

WorkbookInspection inspect(const Book& book) {
  return WorkbookReader(book.package.bytes(), book.sourceName).inspection();
}

Book bookOf(const WorkbookText& workbook) {
  return {.package = testing::workbookPackage(workbook)};
}

std::string repeated(std::string_view piece, std::size_t count) {
  std::string out;
  for (std::size_t i = 0; i < count; ++i)
    out += piece;
  return out;
}

/// `count` cells, 8,000 a row.
std::string rowsWithCells(std::size_t count) {
  std::string out;
  for (std::size_t row = 1; count > 0; ++row) {
    const std::size_t cells = std::min<std::size_t>(count, 8'000);
    count -= cells;
    out += "<row r=\"" + std::to_string(row) + "\">";
    for (std::size_t column = 1; column <= cells; ++column) {
      out += "<c r=\"" + columnLetters(static_cast<std::int64_t>(column)) + std::to_string(row) + "\"/>";
    }
    out += "</row>";
  }
  return out;
}

TEST(WorkbookReader, InspectsARichWorkbook) {
  const Book book{.sourceName = "folder/Süd.xlsx/"};
  const ByteBuffer bytes = book.package.bytes();
  const WorkbookInspection inspection = inspect(book);
  EXPECT_EQ(inspection.sourceName, "Süd.xlsx");
  EXPECT_EQ(inspection.sourceSHA256.size(), 64U);
  EXPECT_EQ(inspection.dateSystem, "1900");
  EXPECT_EQ(inspection.calculationMode, "manual");
  EXPECT_EQ(inspection.warnings,
            (std::vector<std::string>{"Reads the saved file snapshot. Unsaved Office edits are not included.",
                                      "Formula caches are never treated as freshly recalculated values."}));
  const std::vector<WorksheetInspection> expected = {
      {.name = "Sales",
       .hidden = false,
       .populatedRange = "A1:H6",
       .populatedCellCount = 20,
       .formulaCellCount = 2,
       .formulasMissingCache = 1,
       .hasHiddenRowsOrColumns = true,
       .hasAutoFilter = true},
      {.name = "Hidden", .hidden = true, .populatedRange = "C9:C9", .populatedCellCount = 1},
      {.name = "Empty & last"},
  };
  EXPECT_EQ(inspection.sheets, expected);
}

TEST(WorkbookReader, RefusesInTheOrderOfItsChecks) {
  using Row = testing::Refusal<Book>;
  const auto inPart = [](const std::string& part, const std::string& from, const std::string& to) {
    return [=](Book& book) { book.change(part, from, to); };
  };
  const auto invalid = DocumentError::invalidArchive;
  const auto unsupported = DocumentError::unsupported;
  const auto limit = DocumentError::resourceLimit;
  const DocumentError identity = invalid("worksheet identity");
  const DocumentError numberFormat = invalid("number format");
  const DocumentError rowIdentity = invalid("worksheet row identity");
  const DocumentError cellIdentity = invalid("duplicate cell or mismatched row");

  const std::vector<Row> rows = {
      {"long source name", [](Book& book) { book.sourceName = std::string(513, 'x'); }, limit("source name")},
      {"not a package", [](Book& book) { book.package.remove("[Content_Types].xml"); },
       invalid("not an OOXML package")},
      {"malformed worksheet", inPart(sheet2, "</worksheet>", ""), invalid("malformed XML"), "sheet2"},
      {"no workbook part",
       [](Book& book) {
         book.package.part(workbookPart).name = "xl/book.xml";
         book.change("_rels/.rels", workbookPart, "xl/book.xml");
       },
       unsupported("XLSX workbook structure"), "workbook"},
      {"not a workbook", [](Book& book) { book.package.part(workbookPart).text = "<book/>"; },
       unsupported("only Transitional XLSX is supported"), "workbook"},
      {"strict dialect",
       inPart(workbookPart, "schemas.openxmlformats.org/spreadsheetml/2006/main",
              "purl.oclc.org/ooxml/spreadsheetml/main"),
       unsupported("only Transitional XLSX is supported"), "workbook"},
      {"sheet without name", inPart(workbookPart, R"(name="Sales")", ""), identity, "workbook"},
      {"sheet without relationship", inPart(workbookPart, R"(r:id="rId1")", ""), identity, "workbook"},
      {"relationship under another prefix", inPart(workbookPart, R"(r:id="rId1")", R"(R:id="rId1")"),
       identity, "workbook"},
      {"unknown relationship", inPart(workbookPart, R"(r:id="rId1")", R"(r:id="rId9")"), identity,
       "workbook"},
      {"names that differ in case only", inPart(workbookPart, R"(name="Hidden")", R"(name="SALES")"),
       identity, "workbook"},
      {"no sheet", inPart(workbookPart, "<sheets>", "<sheets/><sheets>"), limit("worksheet count"),
       "workbook"},
      {"long shared string", inPart("xl/sharedStrings.xml", "Region", std::string(32'769, 's')),
       limit("shared strings"), "strings"},
      {"too many shared strings", inPart("xl/sharedStrings.xml", "<si>", repeated("<si/>", 50'000) + "<si>"),
       limit("shared strings"), "strings"},
      {"format without id", inPart(stylesPart, R"(numFmtId="164")", ""), numberFormat, "styles"},
      {"format id that is no integer", inPart(stylesPart, R"(numFmtId="164")", R"(numFmtId="164.0")"),
       numberFormat, "styles"},
      {"format without code", inPart(stylesPart, "formatCode", "code"), numberFormat, "styles"},
      {"repeated format id",
       inPart(stylesPart, "</numFmts>", R"(<numFmt numFmtId="164" formatCode="0"/></numFmts>)"), numberFormat,
       "styles"},
      {"chart sheet", [](Book& book) { book.package.part(sheet1).text = "<chartsheet/>"; },
       unsupported("worksheet type"), "sheet1"},
      {"row without number", inPart(sheet1, R"(<row r="1">)", "<row>"), rowIdentity, "sheet1/row1"},
      {"row number 0", inPart(sheet1, R"(<row r="1">)", R"(<row r="0">)"), rowIdentity, "sheet1/row1"},
      {"row past the last", inPart(sheet1, R"(<row r="1">)", R"(<row r="1048577">)"), rowIdentity,
       "sheet1/row1"},
      {"row number with a plus", inPart(sheet1, R"(<row r="1">)", R"(<row r="+1">)"), rowIdentity,
       "sheet1/row1"},
      {"cell in another row", inPart(sheet1, R"(r="A1")", R"(r="A2")"), cellIdentity, "sheet1/row1"},
      {"cell twice", inPart(sheet1, R"(r="C1")", R"(r="$a$1")"), cellIdentity, "sheet1/row1"},
      {"cell without address", inPart(sheet1, R"(<c r="A2")", "<c"), invalid("cell without address"),
       "sheet1/A2"},
      {"cell outside the sheet", inPart(sheet1, R"(r="B2")", R"(r="XFE2")"),
       DocumentError::invalidSelection("cell address bounds"), "sheet1/B2"},
      {"row twice, after a bad cell", inPart(sheet1, R"(<row r="5">)", R"(<row r="1">)"), rowIdentity,
       "sheet1/row5"},
      {"bad merged area", inPart(sheet1, R"(ref="A6:B6")", R"(ref="B6:A6")"),
       DocumentError::invalidSelection("reversed range"), "sheet1/merged"},
      {"bad row of a later sheet", inPart(sheet2, R"(<row r="9">)", R"(<row r="x">)"), rowIdentity, "sheet2"},
  };
  testing::expectRefusals<Book>([] { return Book(); }, rows, inspect);
}

TEST(WorkbookReader, TakesEveryLimitAndRefusesOneMore) {
  const auto sheets = [](std::size_t count) {
    WorkbookText workbook;
    for (std::size_t i = 0; i < count; ++i)
      workbook.sheets.push_back({"S" + std::to_string(i), ""});
    return bookOf(workbook);
  };
  const auto sheetNamed = [](std::size_t characters) {
    // One character of two scalars each: what counts is what a person sees.
    return bookOf({.sheets = {{repeated("e\u0301", characters), ""}}});
  };
  const auto strings = [](std::size_t count) {
    return bookOf({.sheets = {{"S", ""}}, .sharedStrings = std::vector<std::string>(count, "<t>a</t>")});
  };
  const auto stringOf = [](std::size_t characters) {
    return bookOf({.sheets = {{"S", ""}}, .sharedStrings = {"<t>" + repeated("é", characters) + "</t>"}});
  };
  const auto codeOf = [](std::size_t characters) {
    return bookOf({.sheets = {{"S", ""}},
                   .styles = R"(<numFmts><numFmt numFmtId="164" formatCode=")" +
                             std::string(characters, '0') + R"("/></numFmts>)"});
  };
  const auto cells = [](std::size_t count) { return bookOf(testing::plainWorkbook(rowsWithCells(count))); };
  const auto sourceOf = [](std::size_t bytes) {
    return Book{.sourceName = std::string(bytes - 2, 'x') + "é"};
  };

  const struct {
    std::string name;
    std::function<Book(std::size_t)> make;
    std::size_t limit;
    DocumentError expected;
  } rows[] = {
      {"sheets", sheets, maximumSheets, DocumentError::resourceLimit("worksheet count")},
      {"sheet name", sheetNamed, maximumSheetNameCharacters,
       DocumentError::invalidArchive("worksheet identity")},
      {"shared strings", strings, SharedStrings::maximumItems,
       DocumentError::resourceLimit("shared strings")},
      {"shared string", stringOf, SharedStrings::maximumCharacters,
       DocumentError::resourceLimit("shared strings")},
      {"format code", codeOf, CellStyles::maximumCodeCharacters,
       DocumentError::invalidArchive("number format")},
      {"cells", cells, maximumWorksheetCells, DocumentError::resourceLimit("populated cell count")},
      {"source name", sourceOf, WorkbookReader::maximumSourceNameBytes,
       DocumentError::resourceLimit("source name")},
  };
  for (const auto& row : rows) {
    for (const std::size_t less : {1U, 0U}) {
      const auto error = errorOf([&] { inspect(row.make(row.limit - less)); });
      EXPECT_FALSE(error) << row.name << ": " << testing::describe(error);
    }
    const auto error = errorOf([&] { inspect(row.make(row.limit + 1)); });
    EXPECT_TRUE(error == row.expected) << row.name << ": " << testing::describe(error);
  }
}

TEST(WorkbookReader, ReadsPropertiesAndVisibility) {
  const struct {
    std::string date1904;
    std::string expected;
  } dates[] = {{"1", "1904"},   {"true", "1904"}, {"0", "1900"},
               {"yes", "1900"}, {"TRUE", "1900"}, {"", "1900"}};
  for (const auto& row : dates) {
    const Book book =
        bookOf({.sheets = {{"S", ""}}, .properties = "<workbookPr date1904=\"" + row.date1904 + "\"/>"});
    EXPECT_EQ(inspect(book).dateSystem, row.expected) << row.date1904;
    EXPECT_EQ(inspect(book).calculationMode, "auto");
  }
  const Book states = bookOf({.sheets = {{"a", "", R"( state="visible")"},
                                         {"b", "", R"( state="hidden")"},
                                         {"c", "", R"( state="veryHidden")"},
                                         {"d", "", R"( state="")"}}});
  std::string hidden;
  for (const auto& sheet : inspect(states).sheets) {
    if (sheet.hidden) hidden += sheet.name;
  }
  EXPECT_EQ(hidden, "bcd");
}

TEST(WorkbookReader, CountsWhatASheetHolds) {
  const struct {
    std::string content;
    WorksheetInspection expected;
  } rows[] = {
      {"", {}},
      {"<sheetData><row r='1'/></sheetData>", {}},
      {"<sheetData><row r='7'><c r='B7'/></row><row r='2'><c r='D2'/></row></sheetData>",
       {.populatedRange = "B2:D7", .populatedCellCount = 2}},
      {"<sheetData><row r='1'><c r='A1'><f/><v>1</v></c><c r='B1'><f>A1</f></c><c r='C1'><f/><v></v></c>"
       "<c r='D1'><f/><v><x>1</x></v></c></row></sheetData>",
       {.populatedRange = "A1:D1",
        .populatedCellCount = 4,
        .formulaCellCount = 4,
        .formulasMissingCache = 2}},
      {"<sheetData><row r='3' hidden='true'/></sheetData>", {.hasHiddenRowsOrColumns = true}},
      {"<sheetData><row r='3' hidden='0'/></sheetData>", {}},
      {"<cols><col min='2' max='2' hidden='1'/></cols>", {.hasHiddenRowsOrColumns = true}},
      {"<cols><col min='3' max='2' hidden='1'/><col min='x' max='2' hidden='1'/><col hidden='1'/></cols>",
       {}},
      {"<cols><col min='2' max='2' hidden='false'/></cols>", {}},
      {"<mergeCells><mergeCell/></mergeCells><autoFilter/>", {.hasAutoFilter = true}},
  };
  for (const auto& row : rows) {
    WorksheetInspection expected = row.expected;
    expected.name = "S";
    EXPECT_EQ(inspect(bookOf({.sheets = {{"S", row.content}}})).sheets.front(), expected) << row.content;
  }
}

TEST(WorkbookReader, SheetsMayShareAPartAndStrayPartsAreNotRead) {
  Book book;
  book.change("xl/_rels/workbook.xml.rels", "worksheets/sheet2.xml", "worksheets/sheet1.xml");
  book.package.part(sheet2).text = "<worksheet><sheetData><row/></sheetData></worksheet>";
  const auto inspection = inspect(book);
  EXPECT_EQ(inspection.sheets[0].populatedRange, inspection.sheets[1].populatedRange);
}

}  // namespace
}  // namespace zelvo
