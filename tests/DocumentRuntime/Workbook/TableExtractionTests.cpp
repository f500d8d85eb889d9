// Owns the extraction of tables: provenance, order of checks, limits, types of cells.
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
using testing::outcomeOf;

struct Extraction {
  testing::WorkbookText workbook = testing::richWorkbook();
  TableSelection selection = {.sheetName = "Sales",
                              .range = "A1:E4",
                              .firstRowIsHeader = true,
                              .includeHiddenRows = false,
                              .allowCachedFormulaValues = true};
  std::set<CellAddress> acceptedEmptyFormulaCells;

  /// Changes the first place in the first sheet where `from` stands.
  void change(std::string_view from, std::string_view to) {
    testing::replace(workbook.sheets.front().content, from, to);
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

using X = Extraction&;

std::vector<testing::Refusal<Extraction>> refusals() {
  const auto inSheet = [](std::string_view table) {
    return testing::edits<Extraction>(
        [](X x) -> auto& { return x.workbook.sheets.front().content; }, table);
  };
  const auto sheet = DocumentError::invalidSelection("unknown or hidden worksheet");
  const auto size = DocumentError::resourceLimit("select at most eight columns and 200 data rows");
  return testing::joined<Extraction>({
      {{"unknown sheet", [](X x) { x.selection.sheetName = "sales"; }, sheet, "name"},
       {"hidden sheet", [](X x) { x.selection.sheetName = "Hidden"; }, sheet, "name"},
       {"three corners", [](X x) { x.selection.range = "A1:B2:C3"; },
        "invalidSelection: use one rectangular A1 range", "range"},
       {"reversed", [](X x) { x.selection.range = "B2:A1"; }, "invalidSelection: reversed range", "range"},
       {"nine columns", [](X x) { x.selection.range = "A1:I4"; }, size, "range"},
       {"header alone", [](X x) { x.selection.range = "A1:E1"; }, size, "range"}},
      inSheet(R"(
<row r="5"> => <row> | invalidArchive: worksheet row identity |
ref="A6:B6" => ref="E4:F9" | unsupported: merged cells in the selected table |
<col min="8" => <col min="5" | invalidSelection: the selection includes hidden columns |
<c r="A1" t="s"> => <c r="A1" t="s"><f t="shared" si="0"/> | unsupported: shared or array formula at A1 | A1
<c r="A1" t="s"><v>0</v> => <c r="A1"><f>1</f> | formulaValueUnavailable: A1 | A1
<c r="B1" t="s"> => <c r="B1" s="5" t="s"> | invalidArchive: cell style index | B1
<c r="B1" t="s"> => <c r="B1" s="-1" t="s"> | invalidArchive: cell style index | B1
<c r="B1" t="s"><v>1</v> => <c r="B1" t="s"><v>3</v> | invalidArchive: shared string index | B1
<c r="D1" t="str"> => <c r="D1" t="x"> | unsupported: cell type x | D1
<c r="C2" t="b"><v>1</v> => <c r="C2" t="b"><v>TRUE</v> | invalidArchive: boolean value |
<v>45000</v> => <v>2958466</v> | unsupported: Excel date at D2 | D2
<v>45000</v> => <v>1,5</v> | invalidArchive: numeric cell | D2
<v>0.75</v> => <v>1.5</v> | unsupported: time value spans multiple days at D4 |)"),
  });
}

TEST(TableExtraction, RefusesInTheOrderOfItsChecks) {
  testing::expectRefusals<Extraction>([] { return Extraction(); }, refusals(), extract);
}

TEST(TableExtraction, LimitsRowsAndColumns) {
  for (const auto& row : testing::cases<3>(R"(
      A1:H200 | yes | yes ; A1:H201 | yes | yes ; A1:H202 | no | no ; A1:I2 | no | no ; A1:I1 | no | no
      A1 | no | yes ; A1:A2 | yes | yes ; B3:B203 | yes | yes ; B3:B204 | no | no)")) {
    const std::string& range = row[0];
    for (const bool header : {true, false}) {
      const auto outcome = outcomeOf([&] {
        TableExtraction::selectedRange({"", range, header, false, false});
      });
      EXPECT_EQ(outcome == "", row[header ? 1 : 2] == "yes") << range << header;
    }
  }
}

testing::Outcome outcome(const Extraction& extraction) {
  return outcomeOf([&] { extract(extraction); });
}

TEST(TableExtraction, ChecksHeadersAndVisibleRows) {
  Extraction extraction = cellsOf("<c r='A1' t='str'><v>T</v></c>", "A1:A2");
  extraction.selection.firstRowIsHeader = true;
  const auto titles = DocumentError::invalidSelection("headers must be nonempty and at most 120 characters");
  const auto withTitle = [&](const std::string& title) {
    Extraction titled = extraction;
    titled.change("<v>T</v>", "<v>" + title + "</v>");
    return outcome(titled);
  };
  EXPECT_EQ(withTitle(testing::characters(120)), "");
  for (const std::string& title :
       {testing::characters(120) + "x", std::string(" &#9;&#10;\u3000"), std::string()})
    EXPECT_EQ(withTitle(title), titles) << title;
  for (const auto& [first, second, expected] : testing::cases<3>(R"(
      hidden='0' | hidden='0' | ; hidden='0' | hidden='1' | invalidSelection: no data rows
      hidden='1' | hidden='0' | invalidSelection: header row is hidden
      hidden='1' | hidden='true' | invalidSelection: no visible rows)")) {
    Extraction rows = extraction;
    rows.change("<row r='1'>", "<row r='2' " + second + "/><row r='1' " + first + ">");
    EXPECT_EQ(outcome(rows), expected) << first << second;
    rows.selection.includeHiddenRows = true;
    EXPECT_EQ(outcome(rows), "");
  }
}

TEST(TableExtraction, TypesCells) {
  for (const auto& [cell, expected] : testing::cases<2>(R"(
      <c r='A1'/> => A1 missing ; => A1 missing ; <c r='A1' s='1'/> => A1 missing {"$"#,##0.00}
      <c r='A1' t=''><v>1</v></c> => A1 number 1
      <c r='A1'><v>+1.50E-2</v></c> => A1 number +1.50E-2
      <c r='A1'><v>1e309</v></c> => invalidArchive: numeric cell
      <c r='A1'><v> 1</v></c> => invalidArchive: numeric cell
      <c r='A1' s='0'><v>1</v></c> => A1 number 1 {General}
      <c r='A1' s='6'><v>1</v></c> => A1 number 1 {@}
      <c r='A1' s='7'><v>1</v></c> => A1 number 1
      <c r='A1' s='5'><v>1</v></c> => unsupported: number format at A1
      <c r='A1' s='5' t='str'><v>x</v></c> => A1 text x {unsupported-format-12}
      <c r='A1' s='2'><v>60</v></c> => unsupported: Excel date at A1
      <c r='A1' s='2'><v>61</v></c> => A1 date 1900-03-01 {m/d/yy}
      <c r='A1' t='d'><v>2024-02-29</v></c> => A1 date 2024-02-29
      <c r='A1' t='d'><v>2024-02-29T10:00:00Z</v></c> => A1 date 2024-02-29T10:00:00Z
      <c r='A1' t='d'><v>2024-02-30</v></c> => invalidArchive: ISO date
      <c r='A1' t='d'><v>2024-02-29T10:00:00</v></c> => invalidArchive: ISO date
      <c r='A1' t='e'><v>#DIV/0!</v></c> => A1 error #DIV/0!
      <c r='A1' t='s'><v></v></c> => invalidArchive: shared string index
      <c r='A1' t='s'><v>0.0</v></c> => invalidArchive: shared string index
      <c r='A1' t='inlineStr'/> => A1 text␠
      <c r='A1' t='inlineStr'><is><t>a</t><r><t>b</t></r><rPh><t>c</t></rPh></is></c> => A1 text abc
      <c r='A1'><f/><v>2</v></c> => A1 number 2 = cached
      <c r='A1'><f t='normal'>1+1</f><v>2</v></c> => A1 number 2 =1+1 cached
      <c r='A1'><f t='array'>1+1</f><v>2</v></c> => unsupported: shared or array formula at A1
      <c r='A1' t='str'><f>1</f><v/></c> => formulaValueUnavailable: A1)")) {
    std::string shown;
    const Extraction extraction = cellsOf(cell);
    const auto refusal = outcomeOf([&] { shown = dump(extract(extraction).rows[0][0]); });
    EXPECT_EQ(refusal.text + shown, expected) << cell;
  }
}

TEST(TableExtraction, AcceptsEmptyResultsOfListedCellsOnly) {
  Extraction extraction = cellsOf("<c r='A1' t='str'><f>B1</f><v></v></c>");
  extraction.acceptedEmptyFormulaCells = {{.column = 1, .row = 1}};
  EXPECT_EQ(dump(extract(extraction).rows[0][0]), "A1 text  =B1 cached");
  extraction.selection.allowCachedFormulaValues = false;
  EXPECT_EQ(outcome(extraction), "formulaValueUnavailable: A1");
}

TEST(TableExtraction, LimitsTextsByUserPerceivedCharacters) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character of five scalars
  testing::expectLimits<Extraction>(
      {{"cell", CellReader::maximumTextCharacters, "resourceLimit: selected cell text",
        [&](X x, std::size_t n) {
          x = cellsOf("<c r='A1' t='str'><v>" + testing::repeated(family, n) + "</v></c>");
        }}},
      extract);
}

TEST(TableExtraction, LimitsTheTotalOfSharedTexts) {
  // One character of 2 MiB, small in the file and shared by 21 cells.
  Extraction extraction{.workbook = testing::sharedStringColumn(21)};
  extraction.workbook.sharedStrings = {"<t>e" + testing::repeated("\u0301", std::size_t{1024} * 1024) +
                                       "</t>"};
  extraction.selection = {.sheetName = "Data", .range = "A1:A19"};
  EXPECT_EQ(extract(extraction).rows.size(), 19U);
  extraction.selection.range = "A1:A21";
  EXPECT_EQ(outcome(extraction), "resourceLimit: response size");
  EXPECT_THROW(extract(extraction), ResponseTooLarge);
}

TEST(TableExtraction, StopsWhenCancelled) {
  const WorkbookReader reader(testing::workbookPackage(testing::richWorkbook()).bytes(), "book.xlsx");
  EXPECT_THROW(reader.table(Extraction().selection, {}, testing::stopped()), Cancelled);
}

}  // namespace
}  // namespace zelvo
