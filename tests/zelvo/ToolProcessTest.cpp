// The tool as a process: signals, limits and streams that it inherits, and what a terminal receives.

#include <csignal>
#include <filesystem>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <vector>

#include <gtest/gtest.h>

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string book = EXAMPLE_WORKBOOK;

TEST(ToolProcess, EndsItsWorkerWhenASignalEndsIt) {
  prctl(PR_SET_CHILD_SUBREAPER, 1);  // a worker that is left becomes a child of this process
  const DisplacedTool tool;
  const std::string worker =
      tool.folder().write("zelvo_document_worker", "#!/bin/sh\nkill -TERM $PPID; exec sleep 60");
  std::filesystem::permissions(worker, std::filesystem::perms::owner_all);
  const ChildResult result = runChildProcess({tool.folder().path("zelvo"), {"inspect", book}}, {},
                                             {.outputBytes = 0, .wallClock = std::chrono::seconds(30)});
  EXPECT_EQ(result.outcome, ChildOutcome::killed);
  EXPECT_EQ(result.code, SIGTERM);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the worker was left behind";
}

/// Runs the tool, its arguments as a shell takes them, after a command of the shell.
ToolRun runAfter(const std::string& command, const std::string& arguments, std::string_view input = {}) {
  return run("/bin/sh", {"-c", command + "; exec \"$0\" " + arguments, TOOL}, input);
}

TEST(ToolProcess, NamesTheProcessThatFailed) {
  const TemporaryFolder folder;
  const std::string word = folder.path("a.docx");
  const std::string table = book + " --sheet Quarter --range A1:B5 --cached-formulas";
  ASSERT_EQ(runAfter(":", "create --title t " + table + " -o " + word).status, 0);
  const std::string expected = folder.write("t.json", runAfter(":", "extract --json " + table).output);
  // The processor time that is left is too short for a confined process.
  for (const auto& [arguments, process] :
       cases<2>("inspect " + book + " => The worker\nvalidate " + word + " => The worker\nvalidate " + word +
                " --expect " + expected + " => The tool's confined child process\nresearch check " +
                EXAMPLE_DATASET " => The tool's confined child process")) {
    const ToolRun failed = runAfter("ulimit -t 20", arguments);
    EXPECT_EQ(failed.status, 3) << failed;
    EXPECT_TRUE(failed.errors.starts_with(
        "zelvo: " + process + " refused to work because it could not confine itself (status 78)."))
        << failed;
  }
}

TEST(ToolProcess, WorksWithWhatItsParentLeavesIt) {
  const std::string inspect = "inspect " + book;
  const ToolRun inspected = zelvo({"inspect", book});
  EXPECT_EQ(run("/usr/bin/env", {"--ignore-signal=CHLD", TOOL, "inspect", book}), inspected);
  EXPECT_EQ(runAfter("exec 2>&-", inspect), inspected);
  EXPECT_EQ(runAfter("exec <&-", inspect), inspected);
  EXPECT_EQ(runAfter("exec <&-", "inspect -"), failure(1, "The file cannot be read: -: Bad file descriptor"));
  EXPECT_EQ(runAfter("exec >&-", inspect), failure(1, "Standard output cannot be written."));
}

// Characters that drive a terminal or reorder its text; JSON may hold them as they are.
TEST(ToolProcess, EscapesJSONForTerminals) {
  const std::string raw = "\u007f\u0080\u009b\u009f\u061c\u200e\u202e\u2066\u2069";
  const std::string escaped = R"(\u007f\u0080\u009b\u009f\u061c\u200e\u202e\u2066\u2069)";
  const std::string dataset = replaced(contentOf(EXAMPLE_DATASET), R"("report": ")", R"("report": ")" + raw);
  const std::string deck =
      R"({"title":"T","slides":[{"sources":[],"title":"A","body":["a"]},)"
      R"({"sources":[],"title":"B","body":["b"]},{"sources":[],"title":"C","body":["c"]}],)"
      R"("report":")" +
      raw + R"("})";
  const std::string validation =
      R"({"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":)"
      R"(false,"validatorVersion":"1","warnings":[")" +
      raw + R"("],"outputSHA256":""})";
  const struct {
    std::string arguments;
    std::string input;
    std::string answer;  ///< the worker's
  } rows[] = {
      {"inspect --json -", "x",
       R"({"inspection":{"sourceName":")" + raw +
           R"(","sourceSHA256":"","sheets":[],"dateSystem":"","calculationMode":"","warnings":[]}})"},
      {"extract --json - --sheet S --range A1", "x",
       R"({"table":{"sourceName":")" + raw +
           R"(","sourceSHA256":"","sheetName":"","selectedRange":"",)"
           R"("columns":[],"rows":[],"warnings":[],"headerUsesCachedFormulaValues":false}})"},
      {"validate --json -", "x", R"({"validation":)" + validation + "}"},
      {"research check -", dataset, ""},
      {"research presentation -", deck, ""},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.arguments);
    const DisplacedTool tool("say " + row.answer);
    const ToolRun piped = tool.run(words(row.arguments), row.input);
    EXPECT_EQ(piped.status, 0) << piped;
    EXPECT_EQ(onTerminal(row.arguments, row.input, tool.folder().path("zelvo")),
              (ToolRun{0, replaced(piped.output, raw, escaped), ""}));
  }
}

}  // namespace
}  // namespace zelvo::testing
