#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string book = EXAMPLE_WORKBOOK;

ToolRun create(const std::string& output, std::vector<std::string> options = {},
               const std::string& range = "A1:F5") {
  options.insert(options.begin(), {"create", book, "--sheet", "Quarter", "--range", range,
                                   "--cached-formulas", "--title", "[a,b]", "-o", output});
  return zelvo(options);
}

std::string summary(const std::string& path, const std::string& format, const std::string& slides) {
  const std::string document = contentOf(path);
  return path + "\n  Format   " + format + "\n  Size     " + std::to_string(document.size()) + " bytes\n" +
         slides + "  Table    4 rows, 6 columns\n  SHA-256  " + Digest::sha256(bytesOf(document)) + R"(

  Warning: Layout has not been rendered or checked in Word/PowerPoint.
  Warning: Source is the saved file snapshot.
  Warning: Formula results are saved cached values; their freshness is unknown.
)";
}

TEST(CreateCommand, WritesADocumentAndSaysWhatItIs) {
  const TemporaryFolder folder;
  const std::string word = folder.write("a.DOCX", "to be replaced");
  const std::string slides = folder.path("a.pptx");
  const std::string chart = folder.path("chart.pptx");
  struct Row {
    std::string path;
    std::vector<std::string> options;
    std::string format;
    std::string slides;
  };
  const std::vector<Row> rows = {
      {word, {}, "Word document", ""},
      {slides, {}, "PowerPoint presentation", "  Slides   1\n"},
      {chart, {"--chart", "Region:3"}, "PowerPoint presentation", "  Slides   2\n"},
  };
  for (const Row& row : rows) {
    const ToolRun run = create(row.path, row.options);
    EXPECT_EQ(run, (ToolRun{0, summary(row.path, row.format, row.slides), ""}));
  }
  // Only what was asked for is left in the folder.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("")), {}), 3);

  // The chart's title stands in the place of the document's only on the chart's slide.
  const std::string titled = folder.path("titled.pptx");
  EXPECT_EQ(create(titled, {"--chart", "Region:3", "--chart-title", "{}"}).status, 0);
  EXPECT_NE(contentOf(titled), contentOf(chart));
}

TEST(CreateCommand, WritesTheSameToStandardOutput) {
  const TemporaryFolder folder;
  const auto written = [&](const std::string& name, const std::vector<std::string>& options) {
    EXPECT_EQ(create(folder.path(name), options).status, 0);
    return contentOf(folder.path(name));
  };
  const std::vector<std::string> chart = {"--chart", "0:Revenue"};
  EXPECT_EQ(create("-"), (ToolRun{0, written("a.docx", {}), ""}));
  EXPECT_EQ(create("-", chart), (ToolRun{0, written("a.pptx", chart), ""}));
  // A Word document is the same with a chart, even one that names nothing.
  EXPECT_EQ(written("b.docx", {"--chart", "x:y"}), contentOf(folder.path("a.docx")));
}

TEST(CreateCommand, WritesNoDocumentToATerminal) {
  EXPECT_EQ(onTerminal("create - --sheet Quarter --range A1 --no-header --title t -o -"),
            (ToolRun{2, "", "zelvo: A document is not written to a terminal.\n"}));
}

TEST(CreateCommand, LeavesNothingBehindWhenItFails) {
  struct Row {
    std::vector<std::string> options;
    std::string range;
    std::string message;
  };
  const std::string columns =
      " (the columns are 0 Region, 1 Orders, 2 Bags, 3 Revenue, 4 Share of revenue, 5 Average order)";
  const std::string unusable = "The selected table cannot be used: ";
  const std::vector<Row> rows = {
      {{},
       "A1:Z9",
       "The document exceeds a safe processing limit: select at most eight columns and 200 data rows"},
      {{"--chart", "Region:revenue"},
       "A1:F5",
       "The chart does not name two columns: Region:revenue" + columns},
      {{"--chart", "0:-1"}, "A1:F5", "The chart does not name two columns: 0:-1" + columns},
      {{"--chart", "0:6"}, "A1:F5", unusable + "chart needs two different columns and at most 30 rows"},
      {{"--chart", "1:0"},
       "A1:F5",
       unusable + "chart categories and numeric values must be present; missing values are not zero"},
  };
  const TemporaryFolder folder;
  const std::string old = folder.write("old.pptx", "old");
  for (const Row& row : rows)
    EXPECT_EQ(create(old, row.options, row.range), (ToolRun{1, "", "zelvo: " + row.message + "\n"}));
  EXPECT_EQ(contentOf(old), "old");

  std::filesystem::create_directory(folder.path("folder.docx"));
  const std::string unwritable = "zelvo: The file cannot be written: ";
  EXPECT_EQ(create(folder.path("folder.docx")),
            (ToolRun{1, "", unwritable + folder.path("folder.docx") + ": Is a directory\n"}));
  EXPECT_EQ(create(folder.path("absent/a.docx")),
            (ToolRun{1, "", unwritable + folder.path("absent/a.docx") + ": No such file or directory\n"}));
  // A full disk, or near enough: the file may not grow to its size.
  EXPECT_EQ(
      run("/bin/sh",
          {"-c",
           R"(trap '' XFSZ; ulimit -f 8; "$0" create "$1" --sheet Orders --range A1:F8 --title t -o "$2")",
           TOOL, book, folder.path("full.docx")}),
      (ToolRun{1, "", unwritable + folder.path("full.docx") + ": File too large\n"}));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("")), {}), 2);
}

}  // namespace
}  // namespace zelvo::testing
