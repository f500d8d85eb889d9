#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string book = EXAMPLE_WORKBOOK;
const std::string sheets =
    "Visible sheets: Quarter (A1:F6), Orders (A1:H25), Prices 価格 (A1:E6), Notes ☕ (A1:A4)\n";

ToolRun extract(const std::string& sheet, const std::string& range, std::vector<std::string> options = {}) {
  options.insert(options.begin(), {"extract", book, "--sheet", sheet, "--range", range});
  return zelvo(options);
}

/// A table with every kind of text that a reader could trip over.
const std::string oddTable =
    R"({"table":{"sourceName":"b.xlsx","sourceSHA256":"0","sheetName":"S\u001b","selectedRange":"B3:E6",)"
    R"("columns":["Text","Odd, \"title\"","Count","Note"],"rows":[)"
    R"([{"address":"B4","value":{"text":{"_0":"a\r\nb"}},"usesCachedFormulaValue":false,"hidden":true},)"
    R"({"address":"C4","value":{"number":{"_0":"12.5"}},"usesCachedFormulaValue":true,"formula":"1","numberFormat":"0.00","hidden":true},)"
    R"({"address":"D4","value":{"number":{"_0":"7"}},"usesCachedFormulaValue":false,"hidden":true},)"
    R"({"address":"E4","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":true}],)"
    R"([{"address":"B6","value":{"text":{"_0":"価\u009b"}},"usesCachedFormulaValue":false,"hidden":false},)"
    R"({"address":"C6","value":{"number":{"_0":"1"}},"usesCachedFormulaValue":false,"hidden":false},)"
    R"({"address":"D6","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false},)"
    R"({"address":"E6","value":{"boolean":{"_0":true}},"usesCachedFormulaValue":false,"hidden":false}]],)"
    R"("warnings":["w\u0007"],"headerUsesCachedFormulaValues":true}})";

TEST(ExtractCommand, ShowsATableForPeople) {
  EXPECT_EQ(extract("Quarter", "a1:c3", {"--cached-formulas"}), (ToolRun{0, book + R"(
  Row  Region  Orders   Bags
    2  North        8*   170*
    3  East         4*    85*

  * the saved result of a formula

  Sheet    Quarter
  Range    A1:C3
  SHA-256  )" + Digest::sha256(bytesOf(contentOf(book))) + R"(

  Warning: Source is the saved file snapshot.
  Warning: Formula results are saved cached values; their freshness is unknown.
)",
                                                                         ""}));
}

TEST(ExtractCommand, MarksWhatPeopleMustKnow) {
  const DisplacedTool tool("say " + oddTable);
  EXPECT_EQ(tool.run(words("extract - --sheet S --range B3:E6")), (ToolRun{0, R"(-
  Row  Text          Odd, "title"   Count  Note
    4  a\u{D}\u{A}b         12.50*      7        hidden
    6  価\u{9B}                 1          TRUE

  * the saved result of a formula
  Titles are saved results of formulas.

  Sheet    S\u{1B}
  Range    B3:E6
  SHA-256  0

  Warning: w\u{7}
)",
                                                                           ""}));
}

TEST(ExtractCommand, PrintsCsv) {
  const DisplacedTool tool("say " + oddTable);
  const ToolRun odd = tool.run(words("extract - --sheet S --range B3:E6 --csv"));
  EXPECT_EQ(odd.output,
            unpictured(R"(Text,"Odd, ""title""",Count,Note␍␊"a␍␊b",12.50,7,␍␊価)") + "\u009B,1,,TRUE\r\n");
  EXPECT_EQ(odd.status, 0);
  EXPECT_EQ(extract("Notes ☕", "A5:A6", {"--csv", "--no-header"}),
            (ToolRun{0, unpictured(R"(Column A␍␊""␍␊""␍␊)"), ""}));
}

TEST(ExtractCommand, PrintsTheRecord) {
  const ToolRun run = extract("Orders", "A1:C24", {"--json", "--include-hidden"});
  ASSERT_EQ(run.status, 0) << run;
  const auto table = fromJson<SourceTable>(run.output);
  EXPECT_EQ(toJson(table) + "\n", run.output);
  EXPECT_EQ(table.columns, (std::vector<std::string>{"Date", "Order", "Customer"}));
  EXPECT_EQ(table.rows.size(), 23U);
  EXPECT_LT(fromJson<SourceTable>(extract("Orders", "A1:C24", {"--json"}).output).rows.size(), 23U);
}

TEST(ExtractCommand, NamesWhatCanBeSelected) {
  for (const auto& [sheet, range, message] : cases<3>(R"(
      quarter | A1:B2 => The selected table cannot be used: unknown or hidden worksheet
      Assumptions | A1:B2 => The selected table cannot be used: unknown or hidden worksheet
      Quarter | A1-B2 => The selected table cannot be used: cell address
      Quarter | B2:A1 => The selected table cannot be used: reversed range
      Quarter | A1:I2 => The document exceeds a safe processing limit: select at most eight columns and 200 data rows)"))
    EXPECT_EQ(extract(sheet, range), (ToolRun{1, "", "zelvo: " + message + "\n" + sheets}));
  EXPECT_EQ(
      extract("Quarter", "A1:B2"),
      failure(1, "Cell B2 needs a verified formula result. This reader does not recalculate formulas."));
  // The workbook is at hand for the hint even where it can be read only once.
  EXPECT_EQ(zelvo(words("extract - --sheet x --range A1"), contentOf(book)).errors,
            "zelvo: The selected table cannot be used: unknown or hidden worksheet\n" + sheets);
  // A workbook that is none has no sheets to name.
  EXPECT_EQ(zelvo(words("extract - --sheet x --range A1"), "no").errors.find("Visible"), std::string::npos);
}

}  // namespace
}  // namespace zelvo::testing
