#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

TEST(CommandLine, RefusesWhatMakesNoSense) {
  for (const auto& [arguments, message] : cases<2>(R"(
      => A subcommand is required ; inspect => BOOK.xlsx is required ; inspect -x => BOOK.xlsx is required
      inspect --jsno a.xlsx => The following argument was not expected: --jsno
      --json inspect a.xlsx => The following argument was not expected: --json
      extract a.xlsx --sheet S => --range is required
      extract - --sheet S --sheet T --range A1 => --sheet: At Most 1 required but received 2
      extract - --sheet S --range A1 --json --csv => --json excludes --csv
      create - --sheet S --range A1 --title t => -o is required
      create - --sheet S --range A1 --title t -o docx => -o: The file's name must end in .docx or .pptx
      validate a.xlsx => DOC.docx|DOC.pptx: The file's name must end in .docx or .pptx
      validate a.pptx --chart 0 => --chart: The columns must be given as CATEGORY:VALUE
      validate a.pptx --chart-title t => --chart-title requires --chart)"))
    EXPECT_EQ(zelvo(words(arguments)), failure(2, message + " (see zelvo --help)"));
  EXPECT_EQ(zelvo({"extract", "a.xlsx", "--sheet", "\xff", "--range", "A1"}),
            failure(2, "--sheet: The text is not UTF-8 (see zelvo --help)"));
}

TEST(CommandLine, HelpsOnStandardOutput) {
  EXPECT_EQ(zelvo({"--version"}), (ToolRun{0, "zelvo " ZELVO_VERSION "\n", ""}));
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"inspect", "--help"}}) {
    const ToolRun help = zelvo(arguments);
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.errors, "");
    EXPECT_NE(help.output.find("\nExit status: 0 success, "), std::string::npos) << help.output;
  }
}

// A list that the parser takes apart, names of its own words, and what looks like an option.
TEST(CommandLine, TakesFileNamesAsTheyAre) {
  const std::vector<std::string> names = {"[a,b]", "[]", "a,b", "{}", "inspect", "", "-x", "--", "--json"};
  std::vector<std::string> arguments = {"inspect", "--"};
  std::string errors;
  for (const std::string& name : names) {
    arguments.push_back(name);
    errors += "zelvo: The file cannot be read: " + name + ": No such file or directory\n";
  }
  const ToolRun run = zelvo(arguments);
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, errors);
}

TEST(CommandLine, SaysThatStandardOutputIsFull) {
  const ToolRun full = run("/bin/sh", {"-c", "\"$0\" --version > /dev/full", TOOL});
  EXPECT_EQ(full, (ToolRun{1, "", "zelvo: Standard output cannot be written.\n"}));
}

}  // namespace
}  // namespace zelvo::testing
