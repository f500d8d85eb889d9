// Owns extraction of rows: the choice of sheet and range, ranges of any size, and the row forms.

#include "Support/PackageBuilder.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using ExtractSheet = ToolTest;

std::string cell(const std::string& name, const std::string& text) {
  return "<c r='" + name + "' t='inlineStr'><is><t>" + text + "</t></is></c>";
}

/// Sheet S: 450 rows of ten columns, cells named by their addresses. Rows 150 to 399 and 402, and the columns
/// B and I, are hidden. In D and I all cells but the first are numbers. Row 500 has a cell without content.
std::string largeSheet(const std::string& more = "") {
  std::string content =
      "<cols><col min='2' max='2' hidden='1'/><col min='9' max='9' hidden='1'/></cols><sheetData>";
  for (int row = 1; row <= 450; ++row) {
    const std::string number = std::to_string(row);
    const bool isHidden = (row >= 150 && row < 400) || row == 402;
    content += "<row r='" + number + (isHidden ? "' hidden='1'>" : "'>");
    for (const char column : std::string("ABCDEFGHIJ")) {
      const std::string name = column + number;
      const bool isNumber = row > 1 && (column == 'D' || column == 'I');
      content += isNumber ? "<c r='" + name + "'><v>" + number + "</v></c>" : cell(name, name);
    }
    content += "</row>";
  }
  return content + "<row r='500'><c r='A500'/></row></sheetData>" + more;
}

void write(const TemporaryFolder& folder, const std::string& name, const std::string& sheet) {
  folder.write(name, workbookPackage({.sheets = {{"S", sheet}}}).bytes().text());
}

constexpr const char* hiddenColumns = "zelvo: Left out 2 hidden columns: B, I.\n";

TEST_F(ExtractSheet, ReadsLargeRanges) {
  write(folder, "large.xlsx", largeSheet());
  const auto expected = [](bool includesHidden) {
    std::string csv;
    for (int row = 1; row <= 450; ++row) {
      if (!includesHidden && ((row >= 150 && row < 400) || row == 402)) continue;
      const std::string number = std::to_string(row);
      csv += "A" + number + ",C" + number + (row == 1 ? ",D" : ",") + number;
      for (const char* column : {",E", ",F", ",G", ",H", ",J"})
        csv += column + number;
      csv += "\n";
    }
    return csv;
  };
  const std::string hiddenRows =
      "zelvo: Left out 251 hidden rows: 150-399, 402. --include-hidden includes them.\n";
  EXPECT_EQ(zelvo("extract @large.xlsx --csv"), (ToolRun{0, expected(false), hiddenRows + hiddenColumns}));
  EXPECT_EQ(zelvo("extract @large.xlsx --csv --include-hidden"), (ToolRun{0, expected(true), hiddenColumns}));
  EXPECT_EQ(zelvo("extract @large.xlsx --range A1:A300 --csv").errors,
            "zelvo: Left out 151 hidden rows: 150-300. --include-hidden includes them.\n");
  // What a table is refused for, in a range of its size.
  EXPECT_EQ(zelvo("extract @large.xlsx --range A2:C3 --csv").output, "A2,C2\nA3,C3\n");
  EXPECT_EQ(zelvo("extract @large.xlsx --range C402:D402 --csv").output, "");
}

TEST_F(ExtractSheet, RefusesTheWholeOfALargeRange) {
  const std::string areas =
      "<mergeCells><mergeCell ref='J420:J421'/><mergeCell ref='C3:D3'/><mergeCell ref='I1:I2'/></mergeCells>";
  write(folder, "merged.xlsx", largeSheet(areas));
  const std::string corners =
      "<sheetData><row r='1'><c r='A1'><v>1</v></c></row><row r='1048576'><c "
      "r='XFD1048576'><v>1</v></c></row></sheetData>";
  write(folder, "corners.xlsx", corners);
  write(folder, "long.xlsx", replaced(largeSheet(), ">C420<", ">" + characters(2001) + "<"));
  write(folder, "formula.xlsx", replaced(largeSheet(), "<v>420</v>", "<f>1</f><v>420</v>"));
  expectFailures(R"(
      extract @merged.xlsx --csv => 1 | This document feature is not supported yet: merged cells in the selected table at C3
      extract @merged.xlsx --tsv --range C3:D4 => 1 | This document feature is not supported yet: merged cells in the selected table at C3
      extract @corners.xlsx --csv => 1 | The document exceeds a safe processing limit: more than 250000 cells in A1:XFD1048576; select fewer with --range
      extract @long.xlsx --csv => 1 | The document exceeds a safe processing limit: selected cell text (cell C420)
      extract @formula.xlsx => 1 | Cell D420 needs a verified formula result. This reader does not recalculate formulas.)");
  EXPECT_EQ(zelvo("extract @merged.xlsx --csv --range A4:J400").status, 0);
  EXPECT_EQ(zelvo("extract @formula.xlsx --csv --cached-formulas").status, 0);
  EXPECT_EQ(zelvo("extract @corners.xlsx --csv --range A1:Z1048576"),
            (ToolRun{0, "1" + std::string(25, ',') + "\n", ""}));
}

TEST_F(ExtractSheet, ChoosesTheSheetAndTheRange) {
  const auto named = [](const std::string& name, const std::string& state = "") {
    return WorksheetText{name, "<sheetData><row r='2'>" + cell("B2", name) + "</row></sheetData>", state};
  };
  const WorksheetText hidden = named("h", R"( state="hidden")");
  const WorkbookText several = {
      .sheets = {named("3"), named("#1"), named("x"), hidden, {"e", "<sheetData/>"}}};
  folder.write("several.xlsx", workbookPackage(several).bytes().text());
  folder.write("one.xlsx", workbookPackage({.sheets = {hidden, named("v")}}).bytes().text());
  for (const auto& [arguments, output] : cases<2>(R"(
      several.xlsx --sheet 3 => 3␊ ; several.xlsx --sheet #3 => x␊ ; several.xlsx --sheet 2 => #1␊
      several.xlsx --sheet #1 => 3␊ ; several.xlsx --sheet x --range A1:B2 => ,␊,x␊ ; one.xlsx => v␊
      several.xlsx --sheet e => )"))
    EXPECT_EQ(zelvo("extract --csv @" + arguments), (ToolRun{0, output, ""})) << arguments;

  EXPECT_NE(zelvo("extract --json @one.xlsx --no-header").output.find(R"("selectedRange":"B2:B2")"),
            std::string::npos);
  EXPECT_EQ(zelvo("extract --json @several.xlsx --sheet e").hints, "The sheet is empty: e\n");
  EXPECT_EQ(zelvo("extract @several.xlsx"),
            failure(1, "The workbook has several visible sheets: choose one with --sheet."));
  for (const std::string options : {"4", "#6", "0 --range A1", "h --range A1"}) {
    const ToolRun refused = zelvo("extract @several.xlsx --sheet " + options);
    EXPECT_EQ(refused, failure(1, "The selected table cannot be used: unknown or hidden worksheet"));
    EXPECT_TRUE(refused.hints.ends_with("Visible sheets: 3 (B2:B2), #1 (B2:B2), x (B2:B2), e (empty)\n"));
  }
}

/// Cells of a row, each {value, more members}.
std::string rowOf(const std::string& number, const std::vector<std::string>& values) {
  std::string row;
  for (const std::string& value : values)
    row += R"(,{"address":"B)" + number + R"(","hidden":false,"usesCachedFormulaValue":false,"value":)" +
           value + "}";
  return row.replace(0, 1, "[") + "]";
}

TEST_F(ExtractSheet, PrintsRowForms) {
  displace(
      R"(say {"table":{"sourceName":"b","sourceSHA256":"0","sheetName":"S\u001b","selectedRange":"B3","columns":[],)"
      R"("warnings":["w\u0007"],"headerUsesCachedFormulaValues":false,"rows":[)" +
      rowOf("3", {R"({"text":{"_0":"a"}})", R"({"text":{"_0":" "}})", R"({"text":{"_0":"a"}})"}) + "," +
      rowOf("4", {R"({"number":{"_0":"-1.50"}},"numberFormat":"0.0")", R"({"text":{"_0":"=1|2\\|\"\u009b"}})",
                  R"({"boolean":{"_0":true}})"}) +
      "," +
      rowOf("5", {R"({"number":{"_0":"+.5E1"}})", R"({"error":{"_0":"#N/A"}})",
                  R"({"text":{"_0":"\tx\r\ny\\"}})"}) +
      "," + rowOf("6", {R"({"missing":{}})", R"({"text":{"_0":""}})", R"({"missing":{}})"}) + "]}}");
  const std::string c1 = "\u009b";
  const std::pair<std::string, std::string> forms[] = {
      {"--csv", "a, ,a\n-1.5,\"=1|2\\|\"\"" + c1 + "\",TRUE\n+.5E1,#N/A,\"\tx\r\ny\\\"\n"},
      {"--csv --raw --escape-formulas",
       "a, ,a\n-1.50,\"'=1|2\\|\"\"" + c1 + "\",TRUE\n+.5E1,#N/A,\"'\tx\r\ny\\\"\n"},
      {"--tsv --no-header", "a\t \ta\n-1.5\t=1|2\\\\|\"" + c1 + "\tTRUE\n+.5E1\t#N/A\t\\tx\\r\\ny\\\\\n"},
      {"--markdown", "| a |   | a |\n| ---: | --- | --- |\n| -1.5 | =1\\|2\\\\\\|\"" + c1 +
                         " | TRUE |\n| +.5E1 | #N/A | \tx<br>y\\ |\n"},
      {"--jsonl", R"~({"a":-1.50,"C":"=1|2\\|\")~" + c1 + R"~(","a (D)":true})~" + "\n" +
                      R"~({"a":5,"C":{"error":"#N/A"},"a (D)":"\tx\r\ny\\"})~" + "\n"},
      {"--no-header", R"~(-
  Row      B  C              D
    3      a                 a
    4   -1.5  =1|2\|"\u{9B}  TRUE
    5  +.5E1  #N/A           \u{9}x\u{D}\u{A}y\

  Sheet    S\u{1B}
  Range    B3:D6
  SHA-256  0

  Warning: w\u{7}
)~"},
  };
  for (const auto& [options, expected] : forms)
    EXPECT_EQ(displaced("extract - --sheet S --range B3:D6 " + options), (ToolRun{0, expected, ""}))
        << options;
  for (const auto& [form, escaped] : {std::pair("--csv", "\\u{9B}"), std::pair("--jsonl", "\\u009b")}) {
    const std::string arguments = std::string("extract - --sheet S --range B3:D6 ") + form;
    EXPECT_NE(onTerminal(arguments, {}, folder.path("zelvo")).output.find(escaped), std::string::npos);
  }
}

TEST_F(ExtractSheet, FitsTheTerminal) {
  write(folder, "wide.xlsx",
        "<sheetData><row r='1'>" + cell("A1", "Name") + cell("B1", std::string(30, 'b')) +
            "</row><row r='2'>" + cell("A2", "価格価格価格価格価格") +
            "<c r='B2'><v>1234567890123</v></c></row></sheetData>");
  const std::string command = "stty cols 24 -onlcr; " TOOL " extract " + folder.path("wide.xlsx");
  const std::string output = run("/usr/bin/script", {"-qec", command, "/dev/null"}).output;
  EXPECT_NE(
      output.find(
          "\n  Row  Name\n    2  価格価格価格価格…\n\n  Row  bbbbbbbbbbbbbbbb…\n    2      1234567890123\n\n"
          "  Texts that end with … are cut to the terminal's width; --csv prints them whole."),
      std::string::npos)
      << output;
}

TEST_F(ExtractSheet, CreatePrintsTheRecord) {
  const ToolRun json =
      zelvo("create $book --sheet Quarter --range A1:F5 --cached-formulas --title t -o @a.docx --json");
  EXPECT_TRUE(json.output.starts_with(R"({"format":"docx","sourceSHA256":")" +
                                      Digest::sha256(bytesOf(contentOf(book)))));
  EXPECT_NE(json.output.find(Digest::sha256(bytesOf(contentOf(folder.path("a.docx"))))), std::string::npos);
}

}  // namespace
}  // namespace zelvo::testing
