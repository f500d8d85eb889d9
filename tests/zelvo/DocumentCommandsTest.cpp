// Owns inspect, extract, create and validate: their output, and that a failure writes nothing.

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using DocumentCommands = ToolTest;

const std::string noBook = "no workbook, but longer than 22 bytes";
const std::string noBookRefusal = "The document archive is invalid: missing ZIP directory";

std::string inspectionText() {
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
         Digest::sha256(bytesOf(contentOf(book))) + R"(

  Warning: Reads the saved file snapshot. Unsaved Office edits are not included.
  Warning: Formula caches are never treated as freshly recalculated values.
)";
}

TEST_F(DocumentCommands, InspectPrintsTextAndRecords) {
  folder.write("no.xlsx", noBook);
  const std::string absence = expanded("The file cannot be read: @absent: No such file or directory");
  const std::string errors = "zelvo: " + noBookRefusal + "\nzelvo: " + absence + "\n";
  EXPECT_EQ(zelvo("inspect -", contentOf(book)), (ToolRun{0, "-" + inspectionText(), ""}));
  EXPECT_EQ(zelvo("inspect @no.xlsx $book @absent"),
            (ToolRun{1,
                     expanded("@no.xlsx\n  Not inspected: " + noBookRefusal + "\n\n$book") +
                         inspectionText() + expanded("\n@absent\n  Not inspected: ") + absence + "\n",
                     errors}));

  const std::string record = zelvo("inspect --json -", contentOf(book)).output;
  EXPECT_EQ(toJson(fromJson<WorkbookInspection>(record)) + "\n", record);
  EXPECT_EQ(zelvo("inspect --json @no.xlsx $book @absent -", contentOf(book)),
            (ToolRun{1, replaced(record, "standard input", "quarterly-sales.xlsx") + record, errors}));
}

TEST_F(DocumentCommands, InspectReportsAWorkerThatFails) {
  displace();
  EXPECT_EQ(displaced("inspect $book"),
            failure(3, expanded("The worker was not found. (@zelvo_document_worker)")));
  // Not started for a document that no request can carry: another message shows it.
  std::filesystem::resize_file(folder.write("large.xlsx", ""), 31 << 20);
  for (const char* file : {"@large.xlsx", "/dev/zero"})
    EXPECT_EQ(displaced(std::string("inspect ") + file),
              failure(1, "The document is too large: a request to the worker carries less than 30 MiB."));
  placeFakeWorker(folder, "signal 11");
  const ToolRun both = displaced("inspect --json $book @absent");
  EXPECT_EQ(both.status, 3) << "the highest status";
  EXPECT_EQ(both.errors.substr(0, both.errors.find('\n')), "zelvo: The worker crashed (signal 11).");

  // Names come from file systems, errors from hostile documents.
  placeFakeWorker(folder, R"(say {"error":"type \u001b[2J\u0085"})");
  const std::string path = folder.write("\x1b]0;\xff", "");
  const std::string section = expanded("@\\u{1B}]0;\uFFFD\n  Not inspected: type \\u{1B}[2J\\u{85}\n");
  EXPECT_EQ(run(folder.path("zelvo"), {"inspect", path, path}).output, section + "\n" + section);
}

const std::string create = "create $book --sheet Quarter --range A1:F5 --cached-formulas --title [a,b]";

TEST_F(DocumentCommands, CreateWritesADocument) {
  const auto delivered = [&](const std::string& name, const std::string& options = "") {
    return expectDelivers(create + options, name, {}, "  Table    4 rows, 6 columns\n", R"(
  Warning: Layout has not been rendered or checked in Word/PowerPoint.
  Warning: Source is the saved file snapshot.
  Warning: Formula results are saved cached values; their freshness is unknown.
)");
  };
  folder.write("a.DOCX", "replaced");
  delivered("a.DOCX");
  const std::string chart = delivered("chart.pptx", " --chart Region:3");
  EXPECT_NE(delivered("titled.pptx", " --chart 0:Revenue --chart-title {}"), chart);
  EXPECT_EQ(zelvo(create + " -o @slides.pptx").status, 0);
  EXPECT_LT(contentOf(folder.path("slides.pptx")).size(), chart.size());
}

TEST_F(DocumentCommands, CreateWritesNothingIfItFails) {
  folder.write("old.pptx", "old");
  folder.write("old.xlsx", "");
  std::filesystem::create_directory(folder.path("folder.docx"));
  std::string table = R"(
      $create -o @absent/a.docx => 1 | The file cannot be written: @absent/a.docx: No such file or directory
      create /absent --title t --no-clobber -o @old.pptx => 1 | The file cannot be written: @old.pptx: File exists
      clean /absent --no-clobber -o @old.xlsx => 1 | The file cannot be written: @old.xlsx: File exists
      inspect /absent --no-clobber --keep-cleaned @old.xlsx => 1 | The file cannot be written: @old.xlsx: File exists
      research check - --json --no-clobber => 2 | The following argument was not expected: --no-clobber (see zelvo --help)
      research report /absent --title t --no-clobber -o @old.xlsx => 1 | The file cannot be written: @old.xlsx: File exists
      batch inspect /absent --no-clobber -o @old.xlsx => 1 | The file cannot be written: @old.xlsx: File exists
      $create -o @folder.docx => 1 | The file cannot be written: @folder.docx: Is a directory
      $create -o @old.pptx --chart Region:revenue => 1 | The chart does not name two columns: Region:revenue $columns
      $create -o @old.pptx --chart 0:-1 => 1 | The chart does not name two columns: 0:-1 $columns
      $create -o @old.pptx --chart 0:6 => 1 | The selected table cannot be used: chart needs two different columns and at most 30 rows)";
  replaceAll(table, "$create", create);
  replaceAll(table, "$columns",
             "(the columns are 0 Region, 1 Orders, 2 Bags, 3 Revenue, 4 Share of revenue, 5 Average order)");
  expectFailures(table);
  // As on a full disk: the file may not grow to its size.
  EXPECT_EQ(
      runAfter("ulimit -f 8", expanded("create $book --sheet Orders --range A1:F8 --title t -o @full.docx")),
      failure(1, expanded("The file cannot be written: @full.docx: File too large")));
  EXPECT_FALSE(std::filesystem::exists(folder.path("full.docx")));
}

TEST_F(DocumentCommands, ValidatePrintsWhatIsVerified) {
  const std::string table = " $book --sheet Prices␠価格 --range A1:D6 --cached-formulas";
  const std::string expected = zelvo("extract --json" + table).output;
  folder.write("table.json", expected);
  for (const char* output : {"a.docx", "a.pptx", "chart.pptx --chart 0:2"})
    ASSERT_EQ(zelvo("create --title t" + table + " -o @" + output).status, 0);

  for (const auto& [arguments, values, chart] : cases<3>(R"(
      a.docx | not verified: no table was expected (--expect) | not checked: a Word document has none
      a.docx --expect @table.json | verified | not checked: a Word document has none
      a.pptx --expect @table.json | verified | verified: there is none
      chart.pptx --chart 0:2 | not verified: no table was expected (--expect) | verified against its own workbook, but not against a table (--expect)
      chart.pptx --chart 0:2 --expect @table.json | verified | verified: it shows the columns of the expected table)")) {
    const ToolRun run = zelvo("validate @" + arguments);
    EXPECT_NE(
        run.output.find("\n  Source values  " + values + "\n  Chart          " + chart + "\n  Appearance"),
        std::string::npos)
        << run;
    const ToolRun json = zelvo("validate --json @" + arguments);
    EXPECT_EQ(json, (ToolRun{0, toJson(fromJson<DocumentValidation>(json.output)) + "\n", ""}));
  }
  const std::string chart = contentOf(folder.path("chart.pptx"));
  EXPECT_EQ(zelvo("validate - --chart 0:2 --json", chart), zelvo("validate @chart.pptx --chart 0:2 --json"));

  folder.write("other.json", replaced(expected, R"("_0":")", R"("_0":"1)"));
  folder.write("broken.json", "{}");
  expectFailures(R"(
      validate @a.pptx --chart 0:2 => 1 | The generated document did not pass validation: missing chart or orphaned chart workbook
      validate @chart.pptx --chart 0:3 --expect @table.json => 1 | The generated document did not pass validation: chart data differs from the approved columns
      validate @a.docx --expect @other.json => 1 | The generated document did not pass validation: table cells differ from frozen source values
      validate @a.docx --expect @broken.json => 1 | The key "sourceName" is missing.
      validate @a.docx --expect @absent => 1 | The file cannot be read: @absent: No such file or directory
      validate @a.docx --expect /dev/zero => 1 | The file is larger than 40 MiB: /dev/zero
      validate @chart.pptx --chart 0:Bags => 2 | Without --expect, --chart takes indexes of columns only: 0:Bags)");
  const std::string noColumns = "The chart does not name two columns: ";
  EXPECT_EQ(zelvo("validate @chart.pptx --expect @table.json --chart " + characters(500) + ":x"),
            failure(1, noColumns + characters(500 - noColumns.size())));
}

}  // namespace
}  // namespace zelvo::testing
