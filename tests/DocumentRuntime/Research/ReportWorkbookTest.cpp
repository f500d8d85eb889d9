// Owns workbooks of reports and the tables that they take.

#include <cstddef>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Support/Cases.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/TableDump.hpp"
#include "Support/Texts.hpp"

namespace zelvo::testing {
namespace {

/// "a,b/c,d", or "none".
std::string firstTable(const std::string& report) {
  const auto table = ResearchWorkbook::firstTable(report);
  EXPECT_EQ(ResearchWorkbook::hasTable(report), table.has_value());
  if (!table) return "none";
  std::string dumped;
  for (const auto& row : *table) {
    for (const std::string& cell : row)
      dumped += cell + ",";
    dumped.back() = '/';
  }
  dumped.pop_back();
  return dumped;
}

TEST(ResearchReport, FindsTheFirstTable) {
  for (const auto& [report, table] : cases<2>(R"table(
    => none
    ```␊a;b␊c;d␊``` => a,b/c,d
    ```␍␊a;b␍␊c;d␍␊``` => a,b/c,d
    |p|q|␊|r|s|␊```csv␊a;b␊c;d␊``` => a,b/c,d
    ␠␉```␊␠a␉;␠b␉␊c;␠␊␉```json => a,b/c,
    ```␊a;b␊note␊|x|␊␊c;d␊``` => a,b/c,d
    ```␊a␉b␊␉c␉d␉␊``` => a,b/c,d
    ```␊a␉b;c␊d;e␊``` => a␉b,c/d,e
    ```␊a;b␊c;d => none
    ```␊a;b␊``` => none
    ```␊a;b␊```␊c;d␊```␊e;f␊``` => none
    ```␊a;b␊c;d;e␊f;g␊```␊```␊h;i␊j;k␊``` => h,i/j,k
    ```␊a;b␊c;d;e␊```␊|p|q|␊|r|s| => p,q/r,s
    ```␊"a;b";"c""d"␊e;"f;g␊``` => a;b,c"d/e,f;g
    ```␊"";x""y␊"␠a␠";""""␊``` => ,xy/a,"
    ```␊"a;b"␉c␊d␉e␊``` => none
    ```␊;;␊;;␊``` => ,,/,,
    |a|b|␊|c|d| => a,b/c,d
    text␊␉|␠a␉|␠b␠|␠␊|c|␠␠|␊text => a,b/c,
    |a|b|␊|:---|:---:|␊|␠----:␠|---|␊|c|d| => a,b/c,d
    |a|b|␊|:--|-:-| => a,b/:--,-:-
    |a|b|␊|---|---| => none
    |a|b||␊|||| => a,b,/,,
    |a|b|␊|c|␊|d|e|␊␊|f|g|␊|h|i| => f,g/h,i
    |a|b|␊␊|c|d| => none
    |a|b|␊|c|d|␊|e|f|␊g|h| => a,b/c,d/e,f
    ```␊|a|b|␊|c|d|␊``` => a,b/c,d
    |a|b|␊```␊|c|d|␊``` => none
    |a|b|␊|␠|␊|c|d| => none
  )table")) {
    EXPECT_EQ(firstTable(report), table) << report;
  }
  // With nothing between its pipes, or one pipe for both, a line has no cells; it ends no table either.
  EXPECT_EQ(firstTable("|a|b|\n||\n|\n|c|d|"), "a,b/c,d");
  // Spaces and tabs are trimmed, and no other white space.
  EXPECT_EQ(firstTable("|a|\u00a0b|\n|c|d|\n|e|f|\u00a0"), "a,\u00a0b/c,d");
  for (const std::string end : {"\n", "\r", "\r\n", "\v", "\f", "\u0085", "\u2028", "\u2029"})
    EXPECT_EQ(firstTable("```" + end + "a;b" + end + "c;d" + end + "```"), "a,b/c,d");
}

TEST(ResearchReport, BoundsTables) {
  const struct {
    std::size_t rows, cells, characters;
    bool isTable;
  } bounds[] = {{1, 2, 1, false}, {2, 2, 1, true},   {501, 2, 1, true},  {502, 2, 1, false}, {2, 1, 1, false},
                {2, 24, 1, true}, {2, 25, 1, false}, {2, 2, 2000, true}, {2, 2, 2001, false}};
  for (const auto& row : bounds) {
    const std::string cell = characters(row.characters);
    const std::string fields = repeated(cell + ";", row.cells - 1) + cell;
    const std::string fenced = "```\n" + repeated(fields + "\n", row.rows) + "```";
    const std::string piped = repeated("|" + repeated(cell + "|", row.cells) + "\n", row.rows);
    EXPECT_EQ(ResearchWorkbook::hasTable(fenced), row.isTable) << row.rows << ' ' << row.cells;
    EXPECT_EQ(ResearchWorkbook::hasTable(piped), row.isTable) << row.rows << ' ' << row.cells;
  }
}

TEST(ResearchReport, WritesAWholeWorkbook) {
  const ByteBuffer bytes = ResearchWorkbook::make(
      "A \"<title>\"\x02", "Tea & <milk>\u2028\n|Name|1,5|\n|---|---|\n|\x01x&y|-1,5|\n|01|2|\n",
      {"https://b.example/?x=1&y=2", "https://a.example/", "https://a.example/"});
  EXPECT_EQ(differences(bytes, std::filesystem::path(EXPECTED_FOLDER) / "report"), "");
}

std::string dumpOfData(const ByteBuffer& workbook, const std::string& range) {
  const WorkbookReader reader(ByteBuffer::copyOf(workbook.view()), "report.xlsx");
  std::string dumped;
  for (const auto& row : reader.table({.sheetName = "Data", .range = range}).rows)
    dumped += dump(row.front()) + "\n";
  return dumped;
}

TEST(ResearchReport, TellsNumbersFromTexts) {
  std::string report = "```\n12;header\n";
  std::string dumped = "A1 text 12\n";
  int line = 1;
  const auto add = [&](const std::string& field, const std::string& cell) {
    report += field + ";\n";
    dumped += "A" + std::to_string(++line) + " " + cell + "\n";
  };
  for (const std::string& number : words("0 -0 7 -1.5 0.000001 10.000 99999999999999.123456"))
    add(number, "number " + number);
  add("-1,5", "number -1.5");
  add("\"12\"", "number 12");
  for (const std::string& text : words("01 -01 00 1e5 +1 - 1. ,5 -.5 1.5.2 1,000.5 1.1234567 1-2 1␠000 $5 "
                                       "100000000000000 १२ １ Infinity 0x10"))
    add(text, "text " + text);
  const ByteBuffer workbook = ResearchWorkbook::make("", report + "```", {});
  EXPECT_EQ(dumpOfData(workbook, "A1:A" + std::to_string(line)), dumped);
}

TEST(ResearchReport, CutsLongLines) {
  // What cannot be written does not count.
  const std::string longest = characters(32'000);
  const ByteBuffer workbook =
      ResearchWorkbook::make("\x01<" + longest, "\x01" + longest + "x\n|a|b|\n|c|d|", {});
  const PartMap parts = BoundedZIP::read(workbook.view());
  const std::string_view report = parts.find("xl/worksheets/sheet2.xml")->text();
  EXPECT_NE(report.find(">" + longest + "</t>"), std::string_view::npos);
  EXPECT_NE(report.find(">&lt;" + characters(31'999) + "</t>"), std::string_view::npos);
}

struct Report {
  std::string text = "|a|b|\n|c|d|\n";
  std::vector<std::string> sources;
};

TEST(ResearchReport, RefusesWhatItCannotHold) {
  const auto make = [](const Report& report) { ResearchWorkbook::make("T", report.text, report.sources); };
  expectLimits<Report>(
      {{"report", 60'000, "resourceLimit: research report",
        [](Report& report, std::size_t count) { report.text += characters(count - report.text.size()); }},
       {"lines", 49'997, "resourceLimit: too many report lines for a sheet of 49998 rows",
        [](Report& report, std::size_t count) { report.text += std::string(count - 3, '\n'); }},
       {"sources", 100, "resourceLimit: research report",
        [](Report& report, std::size_t count) { report.sources.resize(count); }}},
      make);
  const Outcome withoutTable =
      "validationFailed: The saved report has no table. Continue the task to prepare spreadsheet data.";
  EXPECT_EQ(outcomeOf([&] { make({.text = "No table", .sources = {}}); }), withoutTable);
  EXPECT_EQ(outcomeOf([&] { make({.text = characters(60'001), .sources = {}}); }),
            "resourceLimit: research report");
}

}  // namespace
}  // namespace zelvo::testing
