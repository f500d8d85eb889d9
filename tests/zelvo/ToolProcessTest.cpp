// Owns the tool as a process: the command line, inherited signals, limits and streams, and terminal output.

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using ToolProcess = ToolTest;

TEST_F(ToolProcess, RefusesAnInvalidCommandLine) {
  for (const auto& [arguments, message] : cases<2>(R"(
      => A subcommand is required ; inspect => BOOK.xlsx is required ; inspect -x => BOOK.xlsx is required
      extract a.xlsx --range A1 --sheet)"
                                                   " \xff"
                                                   R"( => --sheet: The text is not UTF-8
      extract - --sheet S --sheet T --range A1 => --sheet: At Most 1 required but received 2
      extract - --json --csv => --json excludes --csv ; extract - --tsv --jsonl => --jsonl excludes --tsv
      doctor --timeout 86401 => --timeout: The time must be 1 to 86400 seconds
      extract - --json --raw => --json excludes --raw ; extract - --sheet  => --sheet: 1 required NAME|#N|N missing
      create - --title t --json -o - => --json excludes -o -: standard output holds the document
      create - --sheet S --range A1 --title t => --output is required
      create - --sheet S --range A1 --title t -o docx => --output: The file's name must end in .docx or .pptx
      validate a.xlsx => DOC.docx|DOC.pptx: The file's name must end in .docx or .pptx
      create - --title t --chart a:b -o a.docx => --chart excludes a Word document, which has no charts
      validate a.docx --chart 0:1 => --chart excludes a Word document, which has no charts
      research presentation - --no-clobber => --no-clobber requires --output
      validate a.pptx --chart 0 => --chart: The columns must be given as CATEGORY:VALUE
      validate a.pptx --chart-title t => --chart-title requires --chart)"))
    EXPECT_EQ(zelvo(arguments), failure(2, message + " (see zelvo --help)"));
}

TEST_F(ToolProcess, PrintsItsVersionToStandardOutput) {
  EXPECT_EQ(zelvo("--version"), (ToolRun{0, "zelvo " ZELVO_VERSION "\n", ""}));
  EXPECT_EQ(runAfter("exec >/dev/full", "--version"), failure(1, "Standard output cannot be written."));
}

// A list that CLI11 splits, names of the tool's own words, and names that look like an option.
TEST_F(ToolProcess, TakesFileNamesAsTheyAre) {
  std::vector<std::string> arguments = {"inspect", "--json", "--"};
  std::string errors;
  for (const std::string name : {"[a,b]", "[]", "a,b", "{}", "inspect", "", "-x", "--", "--json"}) {
    arguments.push_back(name);
    errors += "zelvo: The file cannot be read: " + name + ": No such file or directory\n";
  }
  EXPECT_EQ(run(TOOL, arguments), (ToolRun{1, "", errors}));
}

TEST_F(ToolProcess, EndsItsWorkerIfASignalEndsIt) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);  // an orphaned worker becomes a child of this process
  displace();
  std::filesystem::permissions(
      folder.write("zelvo_document_worker", "#!/bin/sh\nkill -TERM $PPID; exec sleep 60"),
      std::filesystem::perms::owner_all);
  const ChildResult result = runChildProcess({folder.path("zelvo"), {"inspect", book}}, {},
                                             {.outputBytes = 0, .wallClock = std::chrono::seconds(30)});
  EXPECT_EQ(result.outcome, ChildOutcome::killed);
  EXPECT_EQ(result.code, SIGTERM);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the worker is still there";
}

TEST_F(ToolProcess, ChecksTheMachine) {
  EXPECT_EQ(
      zelvo("doctor").output.find("\nConfinement  in force\nWorker       answers\nCleaner      answers\n"),
      zelvo("doctor").output.find('\n'));
  EXPECT_EQ(runAfter("ulimit -t 20", "doctor").errors.find("zelvo: The limit of 45 seconds "), 0U);
  displace("say {}");  // and no cleaner
  const ToolRun broken = displaced("doctor");
  EXPECT_EQ(broken.status, 3);
  EXPECT_NE(broken.output.find("\nConfinement  in force\nWorker       fails\nCleaner      fails\n"),
            std::string::npos);
  EXPECT_NE(broken.errors.find("zelvo: The cleaner was not found. ("), std::string::npos);
}

TEST_F(ToolProcess, ChecksRequests) {
  for (const auto& [request, reason] : cases<2>(R"(
      {"operation":"inspect","sourceName":"s"} => The key "data" is missing.
      {"operation":"create","data":"","sourceName":"s"} => It is a request to the worker, create, and lacks these keys: selection, format, title.
      {"operation":"extract","data":"","sourceName":"s","selection":{"sheetName":1}} => selection.sheetName: Expected a string, found a number.
      {"version":2,"data":"","sourceName":"s"} => version: Expected 1.
      {"data":"","sourceName":"s"} => The key "operation" of a request to the worker is missing, and "version" of one to the cleaner.)"))
    EXPECT_EQ(zelvo("doctor --request -", request), failure(1, "The request cannot be used: " + reason));
  EXPECT_EQ(
      zelvo("doctor --request -", R"({"operation":"validate","data":"","sourceName":"s","format":"docx"})"),
      (ToolRun{0, "The request is well formed: a request to the worker, validate.\n", ""}));
}

TEST_F(ToolProcess, WorksWithInheritedStreamsAndSignals) {
  const std::string inspect = "inspect " + book;
  const ToolRun inspected = zelvo(inspect);
  EXPECT_EQ(run("/usr/bin/env", {"--ignore-signal=CHLD", TOOL, "inspect", book}), inspected);
  EXPECT_EQ(runAfter("exec 2>&-", inspect), inspected);
  EXPECT_EQ(runAfter("exec <&-", inspect), inspected);
  EXPECT_EQ(runAfter("exec <&-", "inspect -"), failure(1, "The file cannot be read: -: Bad file descriptor"));
  EXPECT_EQ(runAfter("exec >&-", inspect), failure(1, "Standard output cannot be written."));
}

TEST_F(ToolProcess, EscapesJSONForTerminals) {
  const std::string raw = "\u007f\u0080\u009b\u009f\u061c\u200e\u202e\u2066\u2069";  // JSON may hold them
  const std::string escaped = R"(\u007f\u0080\u009b\u009f\u061c\u200e\u202e\u2066\u2069)";
  displace(
      R"(say {"validation":{"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":false,)"
      R"("validatorVersion":"1","outputSHA256":"","warnings":[")" +
      raw + R"("]}})");
  folder.write(raw, contentOf(book));
  const std::array<std::string, 3> rows[] = {
      {folder.path("zelvo"), "validate --json -", "x"},
      {TOOL, "inspect --json @" + raw, ""},
      {TOOL, "extract --json --sheet Orders --range A1:A2 @" + raw, ""},
      {TOOL, "research check -",
       replaced(contentOf(EXAMPLES "/research-dataset.json"), R"("report": ")", R"("report": ")" + raw)}};
  for (const auto& [tool, arguments, input] : rows) {
    const ToolRun piped = run(tool, words(expanded(arguments)), input);
    EXPECT_EQ(onTerminal(expanded(arguments), input, tool),
              (ToolRun{0, replaced(piped.output, raw, escaped), ""}));
  }
}

TEST_F(ToolProcess, WritesNoDocumentToATerminal) {
  for (const std::string command :
       {"clean -", "create - --sheet S --range A1 --title t", "research presentation -",
        "research workbook - --title t", "research report - --title t"})
    EXPECT_EQ(onTerminal(command + " -o -"), failure(2, "A document is not written to a terminal."));
}

}  // namespace
}  // namespace zelvo::testing
