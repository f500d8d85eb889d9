#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string book = EXAMPLE_WORKBOOK;
const std::string noBook = "no workbook, but longer than 22 bytes";
const std::string noBookRefusal = "The document archive is invalid: missing ZIP directory";

std::string digestOfBook() {
  return Digest::sha256(bytesOf(contentOf(book)));
}

std::string bookTable() {
  return R"(
  Sheet        Visibility  Range   Cells  Formulas  Without result  Hidden rows or columns  Filter
  Quarter      visible     A1:F6      36        25               0  no                      no
  Orders       visible     A1:H25    200        48               0  yes                     yes
  Prices 価格  visible     A1:E6      30         5               0  no                      no
  Assumptions  hidden      A1:C6      15         2               2  no                      no
  Notes ☕     visible     A1:A4       4         0               0  no                      no

  Date system       1900
  Calculation mode  auto
  SHA-256           )" +
         digestOfBook() + R"(

  Warning: Reads the saved file snapshot. Unsaved Office edits are not included.
  Warning: Formula caches are never treated as freshly recalculated values.
)";
}

TEST(InspectCommand, DescribesAWorkbookForPeople) {
  EXPECT_EQ(zelvo({"inspect", book}), (ToolRun{0, book + bookTable(), ""}));
  EXPECT_EQ(zelvo({"inspect", "-"}, contentOf(book)), (ToolRun{0, "-" + bookTable(), ""}));
}

TEST(InspectCommand, PrintsOneRecordALineForPrograms) {
  const ToolRun run = zelvo({"inspect", "--json", book, "-"}, contentOf(book));
  EXPECT_EQ(run.status, 0) << run;
  auto inspection = fromJson<WorkbookInspection>(run.output.substr(0, run.output.find('\n')));
  EXPECT_EQ(inspection.sourceSHA256, digestOfBook());
  EXPECT_EQ(inspection.sheets.size(), 5U);
  EXPECT_EQ(inspection.sourceName, "quarterly-sales.xlsx");
  const std::string first = toJson(inspection);
  inspection.sourceName = "standard input";
  EXPECT_EQ(run.output, first + "\n" + toJson(inspection) + "\n");
}

TEST(InspectCommand, RefusesWithTheMessageAlone) {
  const TemporaryFolder folder;
  const ToolRun refused = failure(1, noBookRefusal);
  EXPECT_EQ(zelvo({"inspect", folder.write("no.xlsx", noBook)}), refused);
  EXPECT_EQ(zelvo({"inspect", "--json", "-"}, noBook), refused);
  EXPECT_EQ(zelvo({"inspect", "."}), failure(1, "The file cannot be read: .: Is a directory"));
}

TEST(InspectCommand, GoesOnAfterAFileThatFails) {
  const TemporaryFolder folder;
  const std::string refused = folder.write("no.xlsx", noBook);
  const std::string absent = folder.path("absent.xlsx");
  const std::string absence = "The file cannot be read: " + absent + ": No such file or directory";
  const std::string errors = "zelvo: " + noBookRefusal + "\nzelvo: " + absence + "\n";

  EXPECT_EQ(zelvo({"inspect", refused, book, absent}),
            (ToolRun{1,
                     refused + "\n  Not inspected: " + noBookRefusal + "\n\n" + book + bookTable() + "\n" +
                         absent + "\n  Not inspected: " + absence + "\n",
                     errors}));
  const ToolRun json = zelvo({"inspect", "--json", refused, book, absent});
  EXPECT_EQ(json, (ToolRun{1, zelvo({"inspect", "--json", book}).output, errors}));
}

TEST(InspectCommand, NamesAWorkerThatBreaks) {
  const DisplacedTool broken("signal 11");
  const ToolRun stopped = failure(3, "The worker crashed (signal 11).");
  EXPECT_EQ(broken.run({"inspect", book}), stopped);
  // The highest status counts, wherever it came.
  const auto absence = failure(1, "The file cannot be read: absent.xlsx: No such file or directory").errors;
  EXPECT_EQ(broken.run({"inspect", "--json", book, "absent.xlsx"}),
            (ToolRun{3, "", stopped.errors + absence}));

  const DisplacedTool alone;
  EXPECT_EQ(alone.run({"inspect", book}),
            failure(3, "The worker was not found. (" + alone.folder().path("zelvo_document_worker") + ")"));
}

TEST(InspectCommand, StartsNothingForAFileThatNoRequestCarries) {
  const DisplacedTool alone;  // to start a worker would fail, with another status
  const std::string large = alone.folder().write("large.xlsx", "");
  std::filesystem::resize_file(large, 31 << 20);
  const auto tooLarge =
      failure(1, "The document is too large: a request to the worker carries less than 30 MiB.");
  EXPECT_EQ(alone.run({"inspect", large}), tooLarge);
  EXPECT_EQ(alone.run({"inspect", "/dev/zero"}), tooLarge);
}

// Names come from hostile documents and from file systems, a broken worker's from anywhere.
TEST(InspectCommand, KeepsControlCharactersFromTheTerminal) {
  const DisplacedTool tool(
      R"(say {"inspection":{"sourceName":"a","sourceSHA256":"0","sheets":[{"name":"\u001b[31m\u009b\u202ex\n",)"
      R"("hidden":false,"populatedCellCount":1,"formulaCellCount":0,"formulasMissingCache":0,)"
      R"("hasHiddenRowsOrColumns":false,"hasAutoFilter":false}],"dateSystem":"\u0007","calculationMode":"\r",)"
      R"("warnings":["\u2028"]}})");
  const std::string name = tool.folder().write("\x1b]0;\xff.xlsx", "");
  EXPECT_EQ(tool.run({"inspect", name}).output, tool.folder().path("\\u{1B}]0;\uFFFD.xlsx") + R"(
  Sheet                           Visibility  Range  Cells  Formulas  Without result  Hidden rows or columns  Filter
  \u{1B}[31m\u{9B}\u{202E}x\u{A}  visible     -          1         0               0  no                      no

  Date system       \u{7}
  Calculation mode  \u{D}
  SHA-256           0

  Warning: \u{2028}
)");

  const DisplacedTool refusing(R"(say {"error":"cell type \u001b[2J\u0085"})");
  EXPECT_EQ(refusing.run({"inspect", book}), failure(1, "cell type \\u{1B}[2J\\u{85}"));
}

}  // namespace
}  // namespace zelvo::testing
