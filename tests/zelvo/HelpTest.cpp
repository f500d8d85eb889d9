// The help: every example of every command is run. What is printed from the same definitions as the help.

#include <sstream>

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using Help = ToolTest;

struct ExamplesAndCommands {
  std::vector<std::string> examples;
  std::vector<std::string> commands;
};

/// The lines below "Examples:" and the names below "Subcommands:".
ExamplesAndCommands sectionsOf(const std::string& help) {
  ExamplesAndCommands found;
  std::istringstream lines(help);
  std::vector<std::string>* section = nullptr;
  for (std::string line; std::getline(lines, line);) {
    if (line == "Examples:")
      section = &found.examples;
    else if (line == "Subcommands:")
      section = &found.commands;
    else if (!line.starts_with("  "))
      section = nullptr;
    else if (section == &found.examples)
      section->push_back(line);
    else if (section != nullptr)
      section->push_back(words(line).front());
  }
  return found;
}

/// Runs the examples of a command and of all below it.
void runExamples(const std::string& folder, const std::string& command, int& count) {
  const ToolRun help = run(TOOL, words("help " + command));
  ASSERT_EQ(help.status, 0) << help;
  EXPECT_EQ(command.empty() ? run(TOOL, {"--help"}) : run(TOOL, words(command + " --help")), help);
  const auto [examples, commands] = sectionsOf(help.output);
  EXPECT_GE(examples.size(), 2U) << command;
  for (const std::string& example : examples) {
    const ToolRun result = run(
        "/bin/bash", {"-c", "set -o pipefail; cd \"$0\"; PATH=\"${1%/*}:$PATH\"; " + example, folder, TOOL});
    EXPECT_EQ(result.status, 0) << example << result;
    ++count;
  }
  for (const std::string& name : commands)
    runExamples(folder, command.empty() ? name : command + " " + name, count);
}

TEST_F(Help, ItsExamplesWork) {
  for (const auto& [name, source] : {std::pair("book.xlsx", "quarterly-sales.xlsx"),
                                     {"uploads/book.xlsx", "quarterly-sales.xlsx"},
                                     {"dataset.json", "research-dataset.json"},
                                     {"datasets.json", "research-datasets.json"},
                                     {"deck.json", "research-presentation.json"},
                                     {"report.md", "research-report.md"}}) {
    std::filesystem::create_directories(folder.path("uploads"));
    std::filesystem::copy_file(std::string(EXAMPLES "/") + source, folder.path(name));
  }
  folder.write("request.json", R"({"operation":"inspect","data":"","sourceName":"book.xlsx"})");
  int count = 0;
  runExamples(folder.path(""), "", count);
  EXPECT_GT(count, 36);
}

TEST_F(Help, ShellsCompleteCommandsAndOptions) {
  for (const auto& [line, completed] : cases<2>(R"(
      zelvo ins => inspect ; zelvo research ch => check ; zelvo clean --no-c => --no-clobber
      zelvo research report --no => --no-clobber ; zelvo completion f => fish
      zelvo schema worker => worker-request worker-response)")) {
    const std::string script = "eval \"$($0 completion bash)\"; COMP_WORDS=(" + line +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _zelvo; echo ${COMPREPLY[@]}";
    EXPECT_EQ(run("/bin/bash", {"-c", script, TOOL}), (ToolRun{0, completed + "\n", ""}));
  }
}

TEST_F(Help, SchemasAreTheFiles) {
  for (const std::string& name : words(zelvo("schema").output))
    EXPECT_EQ(zelvo("schema " + name).output, contentOf(std::string(SCHEMAS "/") + name + ".json"));
  const std::filesystem::directory_iterator files(SCHEMAS);
  EXPECT_EQ(words(zelvo("schema").output).size(), std::distance(files, {}));
  EXPECT_EQ(zelvo("schema datset"), failure(2, "There is no schema \"datset\""));
}

}  // namespace
}  // namespace zelvo::testing
