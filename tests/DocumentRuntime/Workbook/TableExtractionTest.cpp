// Owns the extraction of tables: provenance, order of checks, limits, types of cells.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Support/Cancellation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

namespace zelvo {
namespace {

using namespace testing;

struct Extraction {
  WorkbookText workbook = richWorkbook();
  std::string selected = "Sales!A1:E4";
  bool hasHeader = true;
  bool includesHidden = false;
  bool allowsCache = true;
  std::set<CellAddress> acceptedEmptyFormulaCells = {};

  SourceTable table(const std::stop_token& stop = {}) const {
    const WorkbookReader reader(workbookPackage(workbook).bytes(), "book.xlsx");
    const std::size_t mark = selected.find('!');
    return reader.table(
        {selected.substr(0, mark), selected.substr(mark + 1), hasHeader, includesHidden, allowsCache},
        acceptedEmptyFormulaCells, stop);
  }
};
using X = Extraction&;

/// Without a header, over one sheet of these rows; cells are styled by index: 0 General, 1 currency, 2
/// m/d/yy, 3 0.00%, 4 h:mm, 5 a fraction.
Extraction tableOfRows(const std::string& rows, const std::string& range = "A1") {
  return {.workbook = {.sheets = {{"S", "<sheetData>" + rows + "</sheetData>"}},
                       .styles =
                           R"(<numFmts><numFmt numFmtId="164" formatCode="&quot;$&quot;#,##0.00"/></numFmts>)"
                           R"(<cellXfs><xf numFmtId="0"/><xf numFmtId="164"/><xf numFmtId="14"/>)"
                           R"(<xf numFmtId="10"/><xf numFmtId="20"/><xf numFmtId="12"/></cellXfs>)"},
          .selected = "S!" + range,
          .hasHeader = false};
}

Outcome outcome(const Extraction& extraction) {
  return outcomeOf([&] { extraction.table(); });
}

TEST(TableExtraction, KeepsProvenance) {
  EXPECT_EQ(
      dump(Extraction().table()),
      "book.xlsx Sales!A1:E4 [Region|Revenue |Open|Due|Share] "
      "A2 text 東京|B2 number 1234.5 {\"$\"#,##0.00} = $1,234.50|C2 boolean TRUE|D2 date 2023-03-15 {m/d/yy}|"
      "E2 number 0.25 {0.00%} = 25.00%; "
      "A4 missing|B4 number 1227.5 =SUM(B2:B3) cached {\"$\"#,##0.00} = $1,227.50|C4 boolean FALSE|"
      "D4 date 18:00:00 {h:mm}|E4 error #N/A; "
      "! Source is the saved file snapshot."
      "! Formula results are saved cached values; their freshness is unknown."
      "! Filter visibility follows saved row visibility; filter predicates are not recalculated."
      "! Hidden rows are excluded.");
  EXPECT_EQ(dump(Extraction{.selected = "Sales!$a$2:b3", .hasHeader = false, .includesHidden = true}.table()),
            "book.xlsx Sales!A2:B3 [Column A|Column B] "
            "A2 text 東京|B2 number 1234.5 {\"$\"#,##0.00} = $1,234.50; "
            "A3 text Region hidden|B3 number -7 {\"$\"#,##0.00} = $-7.00 hidden; "
            "! Source is the saved file snapshot."
            "! Filter visibility follows saved row visibility; filter predicates are not recalculated.");
  EXPECT_THROW(Extraction().table(stopped()), Cancelled);
}

TEST(TableExtraction, RefusesInTheOrderOfItsChecks) {
  const auto rows =
      joined<Extraction>({edits<Extraction>(
                              [](X x) -> auto& { return x.selected; }, R"(
Sales! => sales! or Hidden! | invalidSelection: unknown or hidden worksheet | selected
A1:E4 => A1:B2:C3 | invalidSelection: use one rectangular A1 range | selected/range
A1:E4 => B2:A1 | invalidSelection: reversed range | selected/range
A1:E4 => A1:I4 or A1:E1 | resourceLimit: select at most eight columns and 200 data rows | selected/range)"),
                          edits<Extraction>(
                              [](X x) -> auto& { return x.workbook.sheets.front().content; }, R"(
<row r="5"> => <row> | invalidArchive: worksheet row identity |
ref="A6:B6" => ref="E4:F9" | unsupported: merged cells in the selected table |
<col min="8" => <col min="5" | invalidSelection: the selection includes hidden columns |
<c r="A1" t="s"> => <c r="A1" t="s"><f t="shared" si="0"/> | unsupported: shared or array formula at A1 | A1
<c r="A1" t="s"><v>0</v> => <c r="A1"><f>1</f> | formulaValueUnavailable: A1 | A1
<c r="B1" t="s"> => <c r="B1" s="5" t="s"> or <c r="B1" s="-1" t="s"> | invalidArchive: cell style index | B1
<c r="B1" t="s"><v>1</v> => <c r="B1" t="s"><v>3</v> or <c r="B1" t="s"><v>-1</v> | invalidArchive: shared string index | B1
<c r="D1" t="str"> => <c r="D1" t="x"> | unsupported: cell type x | D1
<c r="C2" t="b"><v>1</v> => <c r="C2" t="b"><v>TRUE</v> | invalidArchive: boolean value |
<v>45000</v> => <v>2958466</v> | unsupported: Excel date at D2 | D2
<v>45000</v> => <v>1,5</v> | invalidArchive: numeric cell | D2
<v>0.75</v> => <v>1.5</v> | unsupported: time value spans multiple days at D4 |)")});
  expectRefusals<Extraction>([] { return Extraction(); }, rows, [](const Extraction& x) { x.table(); });
}

TEST(TableExtraction, LimitsRowsAndColumns) {
  for (const auto& [range, withHeader, without] : cases<3>(R"(
      A1:H200 | yes | yes ; A1:H201 | yes | yes ; A1:H202 | no | no ; A1:I2 | no | no ; A1 | no | yes)")) {
    for (const bool header : {true, false}) {
      const auto select = [&, &range = range] {
        TableExtraction::selectedRange({"", range, header, false, false});
      };
      EXPECT_EQ(outcomeOf(select) == "", (header ? withHeader : without) == "yes") << range << header;
    }
  }
}

TEST(TableExtraction, ChecksHeadersAndVisibleRows) {
  const auto titled = [](const std::string& title) {
    Extraction extraction =
        tableOfRows("<row r='1'><c r='A1' t='str'><v>" + title + "</v></c></row>", "A1:A2");
    extraction.hasHeader = true;
    return outcome(extraction);
  };
  EXPECT_EQ(titled(characters(120)), "");
  for (const std::string& title : {characters(120) + "x", std::string(" &#9;&#10;\u3000"), std::string()})
    EXPECT_EQ(titled(title), "invalidSelection: headers must be nonempty and at most 120 characters")
        << title;
  for (const auto& [first, second, expected] : cases<3>(R"(
      hidden='0' | hidden='1' | invalidSelection: no data rows
      hidden='1' | hidden='0' | invalidSelection: header row is hidden
      hidden='1' | hidden='true' | invalidSelection: no visible rows)")) {
    Extraction rows = tableOfRows(
        "<row r='2' " + second + "/><row r='1' " + first + "><c r='A1'><v>1</v></c></row>", "A1:A2");
    rows.hasHeader = true;
    EXPECT_EQ(outcome(rows), expected) << first << second;
    rows.includesHidden = true;
    EXPECT_EQ(outcome(rows), "");
  }
}

TEST(TableExtraction, ReadsEveryTypeOfCell) {
  for (const auto& [cell, expected] : cases<2>(R"(
      <c r='A1'/> => A1 missing ; => A1 missing ; <c r='A1' s='1'/> => A1 missing {"$"#,##0.00}
      <c r='A1'><v>1e309</v></c> => invalidArchive: numeric cell
      <c r='A1' s='5'><v>1</v></c> => unsupported: number format at A1
      <c r='A1' s='5' t='str'><v>x</v></c> => A1 text x {unsupported-format-12}
      <c r='A1' s='2'><v>61</v></c> => A1 date 1900-03-01 {m/d/yy}
      <c r='A1' t='d'><v>2024-02-29</v></c> => A1 date 2024-02-29
      <c r='A1' t='d'><v>2024-02-29T10:00:00</v></c> => invalidArchive: ISO date
      <c r='A1' t='e'><v>#DIV/0!</v></c> => A1 error #DIV/0!
      <c r='A1' t='s'><v>0.0</v></c> => invalidArchive: shared string index
      <c r='A1' t='inlineStr'/> => A1 text␠
      <c r='A1' t='inlineStr'><is><t>a</t><r><t>b</t></r><rPh><t>c</t></rPh></is></c> => A1 text abc
      <c r='A1'><f/><v>2</v></c> => A1 number 2 = cached
      <c r='A1'><f t='array'>1+1</f><v>2</v></c> => unsupported: shared or array formula at A1
      <c r='A1' t='str'><f>1</f><v/></c> => formulaValueUnavailable: A1)")) {
    std::string shown;
    const auto refusal = outcomeOf(
        [&, &cell = cell] { shown = dump(tableOfRows("<row r='1'>" + cell + "</row>").table().rows[0][0]); });
    EXPECT_EQ(refusal.text + shown, expected) << cell;
  }
  Extraction listed = tableOfRows("<row r='1'><c r='A1' t='str'><f>B1</f><v></v></c></row>");
  listed.acceptedEmptyFormulaCells = {{.column = 1, .row = 1}};
  EXPECT_EQ(dump(listed.table().rows[0][0]), "A1 text  =B1 cached");
}

TEST(TableExtraction, LimitsTexts) {
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";  // one character of five scalars
  const auto cell = [&](X x, std::size_t n) {
    x = tableOfRows("<row r='1'><c r='A1' t='str'><v>" + repeated(family, n) + "</v></c></row>");
  };
  // One character of 2 MiB, small in the file and shared by the rows.
  const auto total = [](X x, std::size_t n) {
    x = {.workbook = sharedStringColumn(n), .selected = "Data!A1:A" + std::to_string(n), .hasHeader = false};
    x.workbook.sharedStrings = {"<t>e" + repeated("\u0301", std::size_t{1024} * 1024) + "</t>"};
  };
  expectLimits<Extraction>({{"cell", 2000, "resourceLimit: selected cell text", cell},
                            {"table", 19, "resourceLimit: response size", total}},
                           [](const Extraction& x) { x.table(); });
}

}  // namespace
}  // namespace zelvo
