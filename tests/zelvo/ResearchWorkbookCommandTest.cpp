#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/Cases.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string dataset =
    R"({"report":"R","columns":[{"name":"A","kind":"text"},{"name":"B","kind":"number"}],"charts":[],)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"],"sourceIDs":["local"]}]})";
const std::string scope =
    R"({"localSnapshotIDs":["local"],"publicSources":{"web":"http://h/1"},"records":[]})";
const std::string report = "Sales\r\n\r\n|City|Sold|\r\n|---|---|\r\n|Bonn|1,5|\r\n";

/// `zelvo research …`, the words of the command line and then more arguments.
ToolRun research(const std::string& command, const std::vector<std::string>& more, std::string_view input) {
  std::vector<std::string> arguments = words("research " + command);
  arguments.insert(arguments.end(), more.begin(), more.end());
  return zelvo(arguments, input);
}

/// Runs a command for a file and for standard output, which must give the same.
void expectWritten(const std::string& command, const std::string& input, const std::string& path) {
  const ToolRun written = research(command, {"-o", path}, input);
  const std::string document = contentOf(path);
  const std::string summary = path + "\n  Format   Excel workbook\n  Size     " +
                              std::to_string(document.size()) + " bytes\n  SHA-256  " +
                              Digest::sha256(bytesOf(document)) + "\n";
  EXPECT_EQ(written, (ToolRun{0, summary, ""}));
  EXPECT_EQ(research(command, {"-o", "-"}, input), (ToolRun{0, document, ""}));
}

/// What a range shows.
std::string cellsOf(const std::string& workbook, const std::string& sheet, const std::string& range) {
  return zelvo({"extract", workbook, "--sheet", sheet, "--range", range, "--no-header", "--csv"}).output;
}

TEST(ResearchWorkbookCommand, WritesADataset) {
  const TemporaryFolder folder;
  const std::string book = folder.write("a.XLSX", "to be replaced");
  expectWritten("workbook - --title [a,b] --scope " + folder.write("scope.json", scope), dataset, book);
  EXPECT_EQ(cellsOf(book, "Data", "A2:B2"), "Column A,Column B\r\nx,0.50\r\n");
  EXPECT_EQ(cellsOf(book, "Report", "A1:A2"), "Column A\r\n\"[a,b]\"\r\nR\r\n");
  EXPECT_EQ(cellsOf(book, "Sources", "A2:A3"), "Column A\r\nlocal\r\nweb\r\n");
  expectWritten("workbook --title T " EXAMPLE_DATASET, "", book);
}

TEST(ResearchWorkbookCommand, WritesAReport) {
  const TemporaryFolder folder;
  const std::string book = folder.path("a.xlsx");
  expectWritten("report --title T --source [a,b] --source http://h/ -", report, book);
  EXPECT_EQ(cellsOf(book, "Data", "A1:B2"), "Column A,Column B\r\nCity,Sold\r\nBonn,1.5\r\n");
  EXPECT_EQ(cellsOf(book, "Report", "A1:A2"), "Column A\r\nT\r\nSales\r\n");
  EXPECT_EQ(cellsOf(book, "Sources", "A2:A3"), "Column A\r\n\"[a,b]\"\r\nhttp://h/\r\n");
  expectWritten("report --title T -", "\xEF\xBB\xBF|City|Sold|\n|Bonn|1,5|\n", book);
  EXPECT_EQ(cellsOf(book, "Data", "A1:A2"), "Column A\r\nCity\r\nBonn\r\n");
  expectWritten("report --title T " EXAMPLE_REPORT, "", book);
}

TEST(ResearchWorkbookCommand, LeavesNothingBehindWhenItFails) {
  const TemporaryFolder folder;
  const std::string old = folder.write("old.xlsx", "old");
  const std::string invalid = "The generated document did not pass validation: ";
  const auto refused = [&](const std::string& command, const std::string& input, int status,
                           const std::string& message) {
    EXPECT_EQ(research(command, {"--title", "T", "-o", old}, input),
              (ToolRun{status, "", "zelvo: " + message + "\n"}));
  };
  refused("workbook - --no-sources", replaced(dataset, R"(,"sourceIDs":["local"])", ""), 1,
          invalid + "Each researched row needs an exact URL returned by the research tools.");
  refused("report -", "No table", 1,
          invalid + "The saved report has no table. Continue the task to prepare spreadsheet data.");
  refused("report -", "\xff", 1, "This document feature is not supported yet: report is not UTF-8");
  refused("report absent", "", 1, "The file cannot be read: absent: No such file or directory");
  refused("report - --source \xff", "", 2, "--source: The text is not UTF-8 (see zelvo --help)");
  refused("workbook", "", 2, "DATASET.json is required (see zelvo --help)");
  refused("report - -o a.docx", "", 2, "-o: The file's name must end in .xlsx (see zelvo --help)");
  EXPECT_EQ(research("workbook - --title T", {"-o", old}, "{}").status, 1);
  EXPECT_EQ(contentOf(old), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("")), {}), 1);
  for (const std::string command : {"workbook", "report"})
    EXPECT_EQ(onTerminal("research " + command + " - --title t -o -"),
              (ToolRun{2, "", "zelvo: A document is not written to a terminal.\n"}));
}

}  // namespace
}  // namespace zelvo::testing
