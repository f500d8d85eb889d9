// Owns workbooks of reports and the tables that they take.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Support/ExpectedPackage.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

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
    => none ; ```␊a;b␊c;d␊``` => a,b/c,d ; ```␍␊a;b␍␊c;d␍␊``` => a,b/c,d
    |p|q|␊|r|s|␊```csv␊a;b␊c;d␊``` => a,b/c,d ; ␠␉```␊␠a␉;␠b␉␊c;␠␊␉```json => a,b/c,
    ```␊a;b␊c;d => none ; ```␊a;b␊``` => none ; ```␊a;b␊```␊c;d␊```␊e;f␊``` => none
    ```␊"a;b";"c""d"␊e;"f;g␊``` => a;b,c"d/e,f;g ; ```␊"";x""y␊"␠a␠";""""␊``` => ,xy/a,"
    ```␊"a;b"␉c␊d␉e␊``` => none ; ```␊;;␊;;␊``` => ,,/,, ; |a|b|␊|c|d| => a,b/c,d
    |a|b|␊|c|␊|d|e|␊␊|f|g|␊|h|i| => f,g/h,i ; |a|b|␊␊|c|d| => none ; |a|b|␊|c|d|␊|e|f|␊g|h| => a,b/c,d/e,f
    ```␊|a|b|␊|c|d|␊``` => a,b/c,d ; |a|b|␊```␊|c|d|␊``` => none ; |a|b|␊|␠|␊|c|d| => none
    |a|b|␊|:---:|---:|␊|c|d| => a,b/c,d ; |a|b|␊|:|:|␊|c|d| => a,b/:,:/c,d
  )table")) {
    EXPECT_EQ(firstTable(report), table) << report;
  }
  // Spaces and tabs are trimmed, and no other white space.
  EXPECT_EQ(firstTable("|a|\u00a0b|\n|c|d|\n|e|f|\u00a0"), "a,\u00a0b/c,d");
}

TEST(ResearchReport, BoundsTables) {
  // Rows, cells and characters of a cell.
  for (const auto& [rows, cells, length, isTable] : cases<4>(R"(
      1 | 2 | 1 => no ; 2 | 2 | 1 => yes ; 501 | 2 | 1 => yes ; 502 | 2 | 1 => no ; 2 | 1 | 1 => no
      2 | 24 | 1 => yes ; 2 | 25 | 1 => no ; 2 | 2 | 2000 => yes ; 2 | 2 | 2001 => no)")) {
    const std::string cell = characters(std::stoul(length));
    const std::string fields = repeated(cell + ";", std::stoul(cells) - 1) + cell + "\n";
    const std::string fenced = "```\n" + repeated(fields, std::stoul(rows)) + "```";
    const std::string piped =
        repeated("|" + repeated(cell + "|", std::stoul(cells)) + "\n", std::stoul(rows));
    EXPECT_EQ(ResearchWorkbook::hasTable(fenced), isTable == "yes") << rows << ' ' << cells;
    EXPECT_EQ(ResearchWorkbook::hasTable(piped), isTable == "yes") << rows << ' ' << cells;
  }
}

TEST(ResearchReport, WritesAWholeWorkbook) {
  const ByteBuffer bytes = ResearchWorkbook::make(
      "A \"<title>\"\x02", "Tea & <milk>\u2028\n|Name|1,5|\n|---|---|\n|\x01x&y|-1,5|\n|01|2|\n",
      {"https://b.example/?x=1&y=2", "https://a.example/", "https://a.example/"});
  EXPECT_EQ(differences(bytes, std::filesystem::path(EXPECTED_FOLDER) / "report"), "");
}

TEST(ResearchReport, DistinguishesNumbersFromTexts) {
  std::string report = "```\n12;header\n", expected = "text 12\n";
  for (const auto& [kind, fields] : cases<2>(R"(
      number  | 0 -0 7 -1.5 0.000001 10.000 99999999999999.123456
      text    | 01 -01 00 1e5 +1 - 1. ,5 -.5 1.5.2 1,000.5 1.1234567 1-2 1_000 $5 100000000000000 १२ １ Infinity 0x10)")) {
    for (const std::string& field : words(fields)) {
      report += field + ";\n";
      expected += kind + " " + field + "\n";
    }
  }
  const ByteBuffer bytes = ResearchWorkbook::make("", report + "-1,5;\n\"12\";\n1 000;\n```", {});
  const WorkbookReader reader(bytes.view(), "report.xlsx");
  std::string found;
  for (const auto& row : reader.table({.sheetName = "Data", .range = "A1:A31"}).rows)
    found += dump(row.front()).substr(row.front().address.size() + 1) + "\n";
  EXPECT_EQ(found, expected + "number -1.5\nnumber 12\ntext 1 000\n");
}

TEST(ResearchReport, CutsLongLines) {
  // What cannot be written does not count.
  const std::string longest = characters(32'000);
  const ByteBuffer workbook =
      ResearchWorkbook::make("\x01<" + longest, "\x01" + longest + "x\n|a|b|\n|c|d|", {});
  const PartMap parts = BoundedZIP::read(workbook.view());
  const std::string_view report = parts.find("xl/worksheets/sheet2.xml")->text();
  EXPECT_NE(report.find(">" + longest + "</t>"), std::string_view::npos);
}

struct Report {
  std::string text = "|a|b|\n|c|d|\n";
  std::vector<std::string> sources = {};
};

TEST(ResearchReport, RefusesWhatItCannotHold) {
  const auto make = [](const Report& report) { ResearchWorkbook::make("T", report.text, report.sources); };
  expectLimits<Report>(
      {{"report", 60'000, "resourceLimit: research report",
        [](Report& r, auto n) { r.text += characters(n - r.text.size()); }},
       {"lines", 49'997, "resourceLimit: too many report lines for a sheet of 49998 rows",
        [](Report& r, auto n) { r.text += std::string(n - 3, '\n'); }},
       {"sources", 100, "resourceLimit: research report", [](Report& r, auto n) { r.sources.resize(n); }}},
      make);
  EXPECT_EQ(
      outcomeOf([&] { make({"No table"}); }),
      "validationFailed: The saved report has no table. Continue the task to prepare spreadsheet data.");
}

}  // namespace
}  // namespace zelvo::testing
