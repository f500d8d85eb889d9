#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/TableDump.hpp"

namespace zelvo {
namespace {

using testing::dump;
using testing::errorOf;

struct Extraction {
  testing::WorkbookText workbook = testing::richWorkbook();
  TableSelection selection = {.sheetName = "Sales",
                              .range = "A1:E4",
                              .firstRowIsHeader = true,
                              .includeHiddenRows = false,
                              .allowCachedFormulaValues = true};
  std::set<CellAddress> acceptedEmptyFormulaCells;

  /// Changes the one place in the first sheet where `from` stands.
  void change(std::string_view from, std::string_view to) {
    std::string& text = workbook.sheets.front().content;
    const std::size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    text.replace(at, from.size(), to);
  }
};

SourceTable extract(const Extraction& extraction) {
  const WorkbookReader reader(testing::workbookPackage(extraction.workbook).bytes(), "book.xlsx");
  return reader.table(extraction.selection, extraction.acceptedEmptyFormulaCells);
}

/// A one-cell table without a header over these cells of row 1, styled by index: 0 General, 1 currency, 2
/// m/d/yy, 3 0.00%, 4 h:mm, 5 a fraction, 6 text, 7 none.
Extraction cellsOf(const std::string& cells, const std::string& range = "A1") {
  Extraction extraction;
  extraction.workbook.sheets = {{"S", "<sheetData><row r='1'>" + cells + "</row></sheetData>"}};
  extraction.workbook.styles =
      R"(<numFmts><numFmt numFmtId="164" formatCode="&quot;$&quot;#,##0.00"/></numFmts><cellXfs>)"
      R"(<xf numFmtId="0"/><xf numFmtId="164"/><xf numFmtId="14"/><xf numFmtId="10"/><xf numFmtId="20"/>)"
      R"(<xf numFmtId="12"/><xf numFmtId="49"/><xf/></cellXfs>)";
  extraction.selection = {.sheetName = "S", .range = range, .allowCachedFormulaValues = true};
  return extraction;
}

TEST(TableExtraction, KeepsProvenance) {
  EXPECT_EQ(
      dump(extract({})),
      "book.xlsx Sales!A1:E4 [Region|Revenue |Open|Due|Share] "
      "A2 text 東京|B2 number 1234.5 {\"$\"#,##0.00} = $1,234.50|C2 boolean TRUE|D2 date 2023-03-15 {m/d/yy}|"
      "E2 number 0.25 {0.00%} = 25.00%; "
      "A4 missing|B4 number 1227.5 =SUM(B2:B3) cached {\"$\"#,##0.00} = $1,227.50|C4 boolean FALSE|"
      "D4 date 18:00:00 {h:mm}|E4 error #N/A; "
      "! Source is the saved file snapshot."
      "! Formula results are saved cached values; their freshness is unknown."
      "! Filter visibility follows saved row visibility; filter predicates are not recalculated."
      "! Hidden rows are excluded.");
}

TEST(TableExtraction, ShowsHiddenRowsOnRequest) {
  Extraction extraction;
  extraction.selection.includeHiddenRows = true;
  extraction.selection.range = "$a$2:b3";
  extraction.selection.firstRowIsHeader = false;
  EXPECT_EQ(dump(extract(extraction)),
            "book.xlsx Sales!A2:B3 [Column A|Column B] "
            "A2 text 東京|B2 number 1234.5 {\"$\"#,##0.00} = $1,234.50; "
            "A3 text Region hidden|B3 number -7 {\"$\"#,##0.00} = $-7.00 hidden; "
            "! Source is the saved file snapshot."
            "! Filter visibility follows saved row visibility; filter predicates are not recalculated.");
}

TEST(TableExtraction, RefusesInTheOrderOfItsChecks) {
  using Row = testing::Refusal<Extraction>;
  const auto select = [](auto field, auto value) {
    return [=](Extraction& extraction) { extraction.selection.*field = value; };
  };
  const auto change = [](const std::string& from, const std::string& to) {
    return [=](Extraction& extraction) { extraction.change(from, to); };
  };
  const auto selection = DocumentError::invalidSelection;
  const auto invalid = DocumentError::invalidArchive;
  const auto unsupported = DocumentError::unsupported;
  const DocumentError sheet = selection("unknown or hidden worksheet");
  const DocumentError size = DocumentError::resourceLimit("select at most eight columns and 200 data rows");
  const std::string name = "name";
  const std::string range = "range";

  const std::vector<Row> rows = {
      {"unknown sheet", select(&TableSelection::sheetName, "sales"), sheet, name},
      {"hidden sheet", select(&TableSelection::sheetName, "Hidden"), sheet, name},
      {"three corners", select(&TableSelection::range, "A1:B2:C3"), selection("use one rectangular A1 range"),
       range},
      {"reversed", select(&TableSelection::range, "B2:A1"), selection("reversed range"), range},
      {"nine columns", select(&TableSelection::range, "A1:I4"), size, range},
      {"header alone", select(&TableSelection::range, "A1:E1"), size, range},
      {"broken sheet", change(R"(<row r="5">)", "<row>"), invalid("worksheet row identity")},
      {"merged in the range", change(R"(ref="A6:B6")", R"(ref="E4:F9")"),
       unsupported("merged cells in the selected table")},
      {"hidden column in the range", change(R"(<col min="8")", R"(<col min="5")"),
       selection("the selection includes hidden columns")},
      {"shared formula", change(R"(<c r="A1" t="s">)", R"(<c r="A1" t="s"><f t="shared" si="0"/>)"),
       unsupported("shared or array formula at A1"), "A1"},
      {"formula without result", change(R"(<c r="A1" t="s"><v>0</v>)", R"(<c r="A1"><f>1</f>)"),
       DocumentError::formulaValueUnavailable("A1"), "A1"},
      {"style past the last", change(R"(<c r="B1" t="s">)", R"(<c r="B1" s="5" t="s">)"),
       invalid("cell style index"), "B1"},
      {"style below 0", change(R"(<c r="B1" t="s">)", R"(<c r="B1" s="-1" t="s">)"),
       invalid("cell style index"), "B1"},
      {"string past the last", change(R"(<c r="B1" t="s"><v>1</v>)", R"(<c r="B1" t="s"><v>3</v>)"),
       invalid("shared string index"), "B1"},
      {"unknown type", change(R"(<c r="D1" t="str">)", R"(<c r="D1" t="x">)"), unsupported("cell type x"),
       "D1"},
      {"word for a boolean", change(R"(<c r="C2" t="b"><v>1</v>)", R"(<c r="C2" t="b"><v>TRUE</v>)"),
       invalid("boolean value")},
      {"serial out of range", change("<v>45000</v>", "<v>2958466</v>"), unsupported("Excel date at D2"),
       "D2"},
      {"number of words", change("<v>45000</v>", "<v>1,5</v>"), invalid("numeric cell"), "D2"},
      {"several days under a time format", change("<v>0.75</v>", "<v>1.5</v>"),
       unsupported("time value spans multiple days at D4")},
  };
  testing::expectRefusals<Extraction>([] { return Extraction(); }, rows, extract);
}

TEST(TableExtraction, BoundsRowsAndColumns) {
  const struct {
    std::string range;
    bool header;
    bool accepted;
  } rows[] = {
      {"A1:H201", true, true},   {"A1:H202", true, false}, {"A1:I2", true, false}, {"A1:A1", true, false},
      {"A1:A2", true, true},     {"A1:H201", false, true}, {"A1", false, true},    {"B3:B203", false, true},
      {"B3:B204", false, false}, {"A1:I1", false, false},
  };
  for (const auto& row : rows) {
    const auto error = errorOf([&] {
      TableExtraction::selectedRange({.sheetName = "", .range = row.range, .firstRowIsHeader = row.header});
    });
    EXPECT_EQ(!error, row.accepted) << row.range << ' ' << row.header;
  }
}

TEST(TableExtraction, JudgesHeadersAndVisibleRows) {
  const auto header = [](const std::string& title, const std::string& more = {}) {
    Extraction extraction = cellsOf("<c r='A1' t='inlineStr'><is><t>" + title + "</t></is></c>", "A1:A2");
    extraction.selection.firstRowIsHeader = true;
    extraction.workbook.sheets.front().content.insert(
        extraction.workbook.sheets.front().content.find("</sheetData>"), more);
    return extraction;
  };
  const DocumentError titles =
      DocumentError::invalidSelection("headers must be nonempty and at most 120 characters");
  const std::string mark = "e\u0301";  // one character of two scalars
  std::string longest;
  for (int i = 0; i < 120; ++i)
    longest += mark;

  const struct {
    std::string name;
    Extraction extraction;
    std::optional<DocumentError> expected;
  } rows[] = {
      {"120 characters", header(longest), std::nullopt},
      {"121 characters", header(longest + "x"), titles},
      {"blank", header(" &#9;&#10;\u3000"), titles},
      {"empty", header(""), titles},
      {"hidden header", header("T", "<row r='2' hidden='0'/>"), std::nullopt},
      {"only data rows hidden", header("T", "<row r='2' hidden='1'/>"),
       DocumentError::invalidSelection("no data rows")},
  };
  for (const auto& row : rows) {
    const auto error = errorOf([&] { extract(row.extraction); });
    EXPECT_TRUE(error == row.expected) << row.name << ": " << testing::describe(error);
  }

  Extraction hidden = header("T", "<row r='2'/>");
  hidden.change("<row r='1'>", "<row r='1' hidden='1'>");
  EXPECT_TRUE(errorOf([&] { extract(hidden); }) == DocumentError::invalidSelection("header row is hidden"));
  hidden.change("<row r='2'/>", "<row r='2' hidden='true'/>");
  EXPECT_TRUE(errorOf([&] { extract(hidden); }) == DocumentError::invalidSelection("no visible rows"));
  hidden.selection.includeHiddenRows = true;
  EXPECT_EQ(extract(hidden).columns.front(), "T");
}

TEST(TableExtraction, TypesCells) {
  const struct {
    std::string cell;
    std::string expected;  ///< the dump, or the refusal
  } rows[] = {
      {"<c r='A1'/>", "A1 missing"},
      {"", "A1 missing"},
      {"<c r='A1' s='1'/>", "A1 missing {\"$\"#,##0.00}"},
      {"<c r='A1' t=''><v>1</v></c>", "A1 number 1"},
      {"<c r='A1'><v>+1.50E-2</v></c>", "A1 number +1.50E-2"},
      {"<c r='A1'><v>1e309</v></c>", "The document archive is invalid: numeric cell"},
      {"<c r='A1'><v> 1</v></c>", "The document archive is invalid: numeric cell"},
      {"<c r='A1' s='0'><v>1</v></c>", "A1 number 1 {General}"},
      {"<c r='A1' s='6'><v>1</v></c>", "A1 number 1 {@}"},
      {"<c r='A1' s='7'><v>1</v></c>", "A1 number 1"},
      {"<c r='A1' s='5'><v>1</v></c>", "This document feature is not supported yet: number format at A1"},
      {"<c r='A1' s='5' t='str'><v>x</v></c>", "A1 text x {unsupported-format-12}"},
      {"<c r='A1' s='2'><v>60</v></c>", "This document feature is not supported yet: Excel date at A1"},
      {"<c r='A1' s='2'><v>61</v></c>", "A1 date 1900-03-01 {m/d/yy}"},
      {"<c r='A1' t='d'><v>2024-02-29</v></c>", "A1 date 2024-02-29"},
      {"<c r='A1' t='d'><v>2024-02-29T10:00:00Z</v></c>", "A1 date 2024-02-29T10:00:00Z"},
      {"<c r='A1' t='d'><v>2024-02-30</v></c>", "The document archive is invalid: ISO date"},
      {"<c r='A1' t='d'><v>2024-02-29T10:00:00</v></c>", "The document archive is invalid: ISO date"},
      {"<c r='A1' t='e'><v>#DIV/0!</v></c>", "A1 error #DIV/0!"},
      {"<c r='A1' t='s'><v></v></c>", "The document archive is invalid: shared string index"},
      {"<c r='A1' t='s'><v>0.0</v></c>", "The document archive is invalid: shared string index"},
      {"<c r='A1' t='inlineStr'/>", "A1 text "},
      {"<c r='A1' t='inlineStr'><is><t>a</t><r><t>b</t></r><rPh><t>c</t></rPh></is></c>", "A1 text abc"},
      {"<c r='A1'><f/><v>2</v></c>", "A1 number 2 = cached"},
      {"<c r='A1'><f t='normal'>1+1</f><v>2</v></c>", "A1 number 2 =1+1 cached"},
      {"<c r='A1'><f t='array'>1+1</f><v>2</v></c>",
       "This document feature is not supported yet: shared or array formula at A1"},
      {"<c r='A1' t='str'><f>1</f><v/></c>",
       "Cell A1 needs a verified formula result. This reader does not recalculate formulas."},
  };
  for (const auto& row : rows) {
    std::string shown;
    const auto error = errorOf([&] { shown = dump(extract(cellsOf(row.cell)).rows[0][0]); });
    EXPECT_EQ(error ? error->errorDescription() : shown, row.expected) << row.cell;
  }
}

TEST(TableExtraction, TakesCachedAndEmptyResultsOnlyWhenToldTo) {
  Extraction extraction = cellsOf("<c r='A1' t='str'><f>B1</f><v></v></c>");
  EXPECT_TRUE(errorOf([&] { extract(extraction); }) == DocumentError::formulaValueUnavailable("A1"));
  extraction.acceptedEmptyFormulaCells = {{.column = 1, .row = 1}};
  EXPECT_EQ(dump(extract(extraction).rows[0][0]), "A1 text  =B1 cached");
  extraction.selection.allowCachedFormulaValues = false;
  EXPECT_TRUE(errorOf([&] { extract(extraction); }) == DocumentError::formulaValueUnavailable("A1"));
}

TEST(TableExtraction, CountsCharactersAsPeopleDo) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character of five scalars
  std::string longest;
  for (std::size_t i = 0; i < CellReader::maximumTextCharacters; ++i)
    longest += family;
  const auto textOf = [](const std::string& text) {
    return cellsOf("<c r='A1' t='str'><v>" + text + "</v></c>");
  };
  EXPECT_EQ(extract(textOf(longest)).rows[0][0].value.payload(), longest);
  EXPECT_TRUE(errorOf([&] { extract(textOf(longest + "x")); }) ==
              DocumentError::resourceLimit("selected cell text"));
}

TEST(TableExtraction, BoundsWhatSharedTextsGrowTo) {
  // One character of 2 MiB, small in the file and shared by 21 cells.
  std::string character = "e";
  while (character.size() < 2 * 1024 * 1024)
    character += "\u0301";
  std::string rows;
  for (int row = 1; row <= 21; ++row) {
    const std::string number = std::to_string(row);
    rows += "<row r='" + number + "'><c r='A" + number + "' t='s'><v>0</v></c></row>";
  }
  Extraction extraction{.workbook = testing::plainWorkbook(rows)};
  extraction.workbook.sharedStrings = {"<t>" + character + "</t>"};
  extraction.selection = {.sheetName = "Data", .range = "A1:A19"};
  EXPECT_EQ(extract(extraction).rows.size(), 19U);
  extraction.selection.range = "A1:A21";
  EXPECT_TRUE(errorOf([&] { extract(extraction); }) == DocumentError::resourceLimit("selected cell text"));
}

TEST(TableExtraction, StopsWhenCancelled) {
  const WorkbookReader reader(testing::workbookPackage(testing::richWorkbook()).bytes(), "book.xlsx");
  EXPECT_THROW(reader.table(Extraction().selection, {}, testing::stopped()), Cancelled);
}

}  // namespace
}  // namespace zelvo
