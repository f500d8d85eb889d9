// Owns the research commands: their output, and that a failure writes nothing.

#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string dataset =
    R"({"report":"R","columns":[{"name":"A","kind":"text"},{"name":"B","kind":"number"}],"charts":[],)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]},{"cells":["y",null],"sources":[],"sourceIDs":["local"]}],)"
    R"("calculations":[{"row":1,"column":1,"formula":{"op":"cell","row":0,"column":1}}]})";
const std::string points =
    R"({"title":"T","slides":[{"sources":[],"title":"A","body":["a"]},{"title":"B","body":["b"],)"
    R"("sources":["http://h/1"]},{"title":"C","body":["c"],"sources":[]}],"report":"R"})";
const std::string chartData =
    R"({"report":"R","columns":[{"name":"K","kind":"text"},{"name":"V","kind":"number"}],)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]}],)"
    R"("charts":[{"title":"D","kind":"bar","categoryColumn":0,"valueColumns":[1]}]})";

/// The deck with a chart on its last slide.
std::string withChart(const std::string& binding) {
  return replaced(points, R"("title":"C")", binding + R"(,"title":"C")");
}

struct ResearchCommands : ToolTest {
  ResearchCommands() {
    folder.write("scope.json",
                 R"({"localSnapshotIDs":["local"],"publicSources":{"web":"http://h/1"},"records":[]})");
    folder.write("empty.json", R"({"localSnapshotIDs":[],"publicSources":{},"records":[]})");
    folder.write("one.json", chartData);
    folder.write("two.json",
                 R"([{"id":"d","content":)" + chartData + R"(},{"id":"e","content":)" + chartData + "}]");
    for (const char* old : {"old.xlsx", "old.pptx"})
      folder.write(old, "old");
  }

  /// The displayed cells of a column, without a title.
  std::string cellsOf(const std::string& workbook, const std::string& sheetAndRange) const {
    return zelvo("extract - --no-header --csv --sheet " + sheetAndRange, workbook).output;
  }
};

TEST_F(ResearchCommands, CheckPrintsTheDataset) {
  const ToolRun expected = {
      0,
      R"({"dataset":{"calculations":[{"column":1,"formula":{"column":1,"op":"cell","row":0},"row":1}],"charts":[],)"
      R"("columns":[{"kind":"text","name":"A"},{"kind":"number","name":"B"}],"report":"R",)"
      R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]},{"cells":["y",null],"sourceIDs":["local"],"sources":[]}]},)"
      R"("cells":[["x",0.5],["y",0.5]],)"
      R"json("calculations":[{"row":1,"column":1,"formula":"IF(ISNUMBER(B2),B2,\"\")","value":0.5}]})json"
      "\n",
      ""};
  EXPECT_EQ(zelvo("research check - --json --scope @scope.json", "```json\n" + dataset + "\n```\n"),
            expected);
  EXPECT_EQ(zelvo("research check -", dataset), expected);
  EXPECT_EQ(zelvo("research check --require-chart " EXAMPLES "/research-dataset.json").status, 0);
}

TEST_F(ResearchCommands, WorkbookAndReportWriteWorkbooks) {
  const std::string book =
      expectDelivers("research workbook - --title [a,b] --scope @scope.json", "a.XLSX", dataset);
  EXPECT_EQ(cellsOf(book, "Data --range A2:B2"), "x,0.50\n");
  EXPECT_EQ(cellsOf(book, "Report --range A1:A2"), "\"[a,b]\"\nR\n");
  EXPECT_EQ(cellsOf(book, "Sources --range A2:A3"), "local\nweb\n");
  const std::string themed =
      expectDelivers("research workbook --theme --title T " EXAMPLES "/research-dataset.json", "b.xlsx");
  EXPECT_NE(themed.find("xl/theme/theme1.xml"), std::string::npos);

  const std::string report =
      expectDelivers("research report --title T --source [a,b] --source http://h/ -", "c.xlsx",
                     "\xEF\xBB\xBF|City|Sold|\r\n|---|---|\r\n|Bonn|1,5|\r\n\r\nText");
  EXPECT_EQ(cellsOf(report, "Data --range A1:B2"), "City,Sold\nBonn,1.5\n");
  EXPECT_EQ(cellsOf(report, "Sources --range A2:A3"), "\"[a,b]\"\nhttp://h/\n");
  expectDelivers("research report --title T " EXAMPLES "/research-report.md", "d.xlsx");
}

TEST_F(ResearchCommands, PresentationPrintsOrWritesTheDeck) {
  const std::string referring = withChart(R"("chartReference":{"datasetID":"d","chartIndex":0})");
  // The printed deck is valid again with the datasets that were attached to it.
  const ToolRun attached = zelvo("research presentation - --datasets @two.json", referring);
  EXPECT_TRUE(attached.output.starts_with(R"({"datasets":[{"content":{"charts":[)")) << attached;
  EXPECT_EQ(zelvo("research presentation - --datasets @two.json", attached.output), attached);

  expectDelivers("research presentation -", "a.PPTX", points);
  const std::string deck =
      expectDelivers("research presentation - --dataset @one.json", "b.pptx", withChart(R"("chartIndex":0)"));
  EXPECT_NE(deck.find("ppt/charts/chart1.xml"), std::string::npos);
  const std::string select = "research presentation - --datasets @two.json --allow-dataset e";
  expectDelivers(select + " --allow-dataset d", "c.pptx", referring);
  expectFailures(select +
                     " -o @old.pptx => 1 | The generated document did not pass validation: The "
                     "presentation references a dataset outside its declared result scope.",
                 referring);
}

TEST_F(ResearchCommands, WriteNothingIfTheyFail) {
  std::string datasets = R"(
      check - --require-chart => 1 | $invalid The requested chart is missing.
      check - --no-sources => 1 | $invalid $notReturned
      check --source http://h/2 --source [http://h/1,b] - => 1 | $invalid $notReturned
      check --scope @empty.json --no-sources - => 1 | $invalid Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.
      check --scope @one.json - => 1 | @one.json: The key "localSnapshotIDs" is missing.
      check /dev/zero => 1 | The file is larger than 16 MiB: /dev/zero
      workbook - --title T -o @old.xlsx --no-sources => 1 | $invalid $notReturned
      report - --title T -o @old.xlsx => 1 | $invalid The saved report has no table. Continue the task to prepare spreadsheet data.
      report - --title T -o a.docx => 2 | --output: The file's name must end in .xlsx (see zelvo --help)
      presentation - -o @old.pptx --datasets @one.json => 1 | @one.json: Expected an array, found an object.
      presentation - --dataset @one.json --allow-dataset d => 2 | --allow-dataset requires --datasets (see zelvo --help)
      check - --source http://h --no-sources => 2 | --source excludes --no-sources (see zelvo --help))";
  replaceAll(datasets, "\n      ", "\nresearch ");
  replaceAll(datasets, "$invalid", "The generated document did not pass validation:");
  replaceAll(datasets, "$notReturned",
             "Each researched row needs an exact URL returned by the research tools.");
  expectFailures(datasets, dataset);
  for (const char* option : {"--dataset", "--datasets", "--scope"})
    EXPECT_EQ(run(TOOL, {"research", "presentation", "-", option, ""}, points),
              failure(2, std::string(option) + ": The file's name is empty (see zelvo --help)"));
}

}  // namespace
}  // namespace zelvo::testing
