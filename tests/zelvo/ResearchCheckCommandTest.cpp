#include <string>

#include <gtest/gtest.h>

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string dataset =
    R"({"report":"R","columns":[{"name":"A","kind":"text"},{"name":"B","kind":"number"}],"charts":[],)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]},{"cells":["y",null],"sources":[],"sourceIDs":["local"]}],)"
    R"("calculations":[{"row":1,"column":1,"formula":{"op":"cell","row":0,"column":1}}]})";
const std::string checked =
    R"({"dataset":{"calculations":[{"column":1,"formula":{"column":1,"op":"cell","row":0},"row":1}],"charts":[],)"
    R"("columns":[{"kind":"text","name":"A"},{"kind":"number","name":"B"}],"report":"R",)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]},{"cells":["y",null],"sourceIDs":["local"],"sources":[]}]},)"
    R"("cells":[["x",0.5],["y",0.5]],)"
    R"json("calculations":[{"row":1,"column":1,"formula":"IF(ISNUMBER(B2),B2,\"\")","value":0.5}]})json"
    "\n";
const std::string scope =
    R"({"localSnapshotIDs":["local"],"publicSources":{"web":"http://h/1"},"records":[]})";

ToolRun check(std::vector<std::string> arguments, std::string_view input = dataset) {
  arguments.insert(arguments.begin(), {"research", "check"});
  return zelvo(arguments, input);
}

ToolRun refused(const std::string& message) {
  return failure(1, "The generated document did not pass validation: " + message);
}

TEST(ResearchCheckCommand, PrintsTheCheckedDataset) {
  const ToolRun expected = {0, checked, ""};
  EXPECT_EQ(check({"-"}), expected);
  EXPECT_EQ(check({"-", "--json"}), expected);
  EXPECT_EQ(check({"-"}, "```json\n" + dataset + "\n```\n"), expected);

  const TemporaryFolder folder;
  EXPECT_EQ(check({"--scope", folder.write("scope.json", scope), folder.write("data.json", dataset)}),
            expected);

  const ToolRun example = check({"--require-chart", EXAMPLE_DATASET});
  EXPECT_EQ(example.status, 0) << example;
  EXPECT_NE(example.output.find(R"({"row":1,"column":5,"formula":"IF(COUNT(IF(ISNUMBER(C3),C3,)"),
            std::string::npos)
      << example.output;
}

TEST(ResearchCheckCommand, RefusesWithTheMessageAlone) {
  const std::string notReturned = "Each researched row needs an exact URL returned by the research tools.";
  EXPECT_EQ(check({"-", "--require-chart"}), refused("The requested chart is missing."));
  EXPECT_EQ(check({"-", "--no-sources"}), refused(notReturned));
  EXPECT_EQ(check({"--source", "http://h/2", "--source", "[http://h/1,b]", "-"}), refused(notReturned));
  // The first row cites an allowed URL, the second an identifier, which needs a scope.
  EXPECT_EQ(check({"--source", "http://h/1", "-"}), refused(notReturned));

  const TemporaryFolder folder;
  const std::string empty =
      folder.write("scope.json", R"({"localSnapshotIDs":[],"publicSources":{},"records":[]})");
  EXPECT_EQ(
      check({"--scope", empty, "--no-sources", "-"}),
      refused(
          "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public "
          "URL."));
  EXPECT_EQ(check({"-"}, "[1]").status, 1);
  const std::string broken = folder.write("broken.json", "{}");
  EXPECT_EQ(check({"--scope", broken, "-"}),
            failure(1, broken + ": The key \"localSnapshotIDs\" is missing."));
  EXPECT_EQ(check({"absent.json"}),
            failure(1, "The file cannot be read: absent.json: No such file or directory"));
  EXPECT_EQ(check({"/dev/zero"}), failure(1, "The file is larger than 16 MiB: /dev/zero"));
}

TEST(ResearchCheckCommand, RefusesACommandLineThatMakesNoSense) {
  EXPECT_EQ(check({}).status, 2);
  EXPECT_EQ(check({"-", "--source"}).status, 2);
  EXPECT_EQ(check({"-", "--source", "http://h", "--no-sources"}).status, 2);
  EXPECT_EQ(check({"a.json", "b.json"}).status, 2);
}

}  // namespace
}  // namespace zelvo::testing
