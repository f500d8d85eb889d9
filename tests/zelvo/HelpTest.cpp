// What is printed from the same definitions as the help.

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using Help = ToolTest;

TEST_F(Help, ShellsCompleteCommandsOptionsAndFiles) {
  for (const char* name : {"a.docx", "a.json", "a.xlsx"})
    folder.write(name, "");
  for (const auto& [line, completed] : cases<2>(R"(
      zelvo ins => inspect ; zelvo research ch => check ; zelvo clean --no-c => --no-clobber
      zelvo research report --no => --no-clobber ; zelvo completion f => fish
      zelvo schema worker => worker-request worker-response ; zelvo validate a. => a.docx
      zelvo extract a. => a.xlsx ; zelvo extract --keep-cleaned a. =>)")) {
    const std::string script = "cd $1; eval \"$($0 completion bash)\"; COMP_WORDS=(" + line +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _zelvo; echo ${COMPREPLY[@]}";
    EXPECT_EQ(run("/bin/bash", {"-c", script, TOOL, folder.path("")}), (ToolRun{0, completed + "\n", ""}));
    if (completed.empty()) continue;  // fish lists all files
    const std::string fish = "cd $argv[2]; $argv[1] completion fish | source; complete -C $argv[3] | cut -f1";
    EXPECT_EQ(words(run("/bin/fish", {"-c", fish, TOOL, folder.path(""), line}).output), words(completed));
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
