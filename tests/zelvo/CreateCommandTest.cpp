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

std::string summary(const std::string& path, const std::string& format) {
  const std::string document = contentOf(path);
  return path + "\n  Format   " + format + "\n  Size     " + std::to_string(document.size()) + " bytes\n" +
         "  Table    4 rows, 6 columns\n  SHA-256  " + Digest::sha256(bytesOf(document)) + R"(

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
  const auto expectCreated = [](const std::string& path, const std::vector<std::string>& options,
                                const std::string& format) {
    const ToolRun run = create(path, options);
    EXPECT_EQ(run, (ToolRun{0, summary(path, format), ""}));
  };
  expectCreated(word, {}, "Word document");
  expectCreated(slides, {}, "PowerPoint presentation");
  expectCreated(chart, {"--chart", "Region:3"}, "PowerPoint presentation");
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
  const std::string columns =
      " (the columns are 0 Region, 1 Orders, 2 Bags, 3 Revenue, 4 Share of revenue, 5 Average order)";
  const std::string unusable = "The selected table cannot be used: chart ";
  const std::string values = "categories and numeric values must be present; missing values are not zero";
  const TemporaryFolder folder;
  const std::string old = folder.write("old.pptx", "old");
  const auto chart = [&](const char* selection) { return create(old, {"--chart", selection}); };
  EXPECT_EQ(create(old, {}, "A1:Z9"),
            failure(1,
                    "The document exceeds a safe processing limit: select at most eight columns and 200 data "
                    "rows"));
  for (const char* selection : {"Region:revenue", "0:-1"})
    EXPECT_EQ(chart(selection),
              failure(1, std::string("The chart does not name two columns: ") + selection + columns));
  EXPECT_EQ(chart("0:6"), failure(1, unusable + "needs two different columns and at most 30 rows"));
  EXPECT_EQ(chart("1:0"), failure(1, unusable + values));
  EXPECT_EQ(contentOf(old), "old");

  const auto unwritable = [&](const char* name, const char* reason) {
    return failure(1, "The file cannot be written: " + folder.path(name) + ": " + reason);
  };
  std::filesystem::create_directory(folder.path("folder.docx"));
  EXPECT_EQ(create(folder.path("folder.docx")), unwritable("folder.docx", "Is a directory"));
  EXPECT_EQ(create(folder.path("absent/a.docx")), unwritable("absent/a.docx", "No such file or directory"));
  // A full disk, or near enough: the file may not grow to its size.
  const std::string script =
      R"(ulimit -f 8; "$0" create "$1" --sheet Orders --range A1:F8 --title t -o "$2")";
  EXPECT_EQ(run("/bin/sh", {"-c", script, TOOL, book, folder.path("full.docx")}),
            unwritable("full.docx", "File too large"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("")), {}), 2);
}

}  // namespace
}  // namespace zelvo::testing
