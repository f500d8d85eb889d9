// Owns the order of the engine's steps, the limits of slide cells, and the texts that Word documents refuse.
#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

namespace zelvo {
namespace {

using namespace testing;

using Value = SourceCellValue;

const auto messages = cases<2>(R"(
    lineage     | invalidSelection: cell lineage or bounds
    bounds      | invalidSelection: table, title, or source bounds
    long cells  | unsupported: long slide cells; use a Word table or a smaller presentation selection
    chart rule  | invalidSelection: chart needs two different columns and at most 30 rows
    tall row    | unsupported: presentation cells need too much vertical space; use Word or fewer columns
    title       | unsupported: presentation title is too long for two lines
    chart title | unsupported: chart title is too long for two lines
    chart       | chart data differs from the approved columns
    cells       | table cells differ from frozen source values)");

/// A title, a chart and a table of the texts "1,1" and so on and of numbers.
struct Request {
  std::string text = R"({"title":"Title","chart":{"categoryColumn":0,"valueColumn":1,"title":"C"},)";

  Request() {
    SourceTable table = tableOf(2, 5);
    table.columns = {"1", "2"};
    for (auto& row : table.rows)
      row[1].value = Value::number("2.5");
    text += toJson(table).substr(1);
  }
  std::string title() const {
    return std::string(JsonDocument(text).root().object().required("title").string());
  }
};

void createDeck(const Request& request) {
  std::optional<ChartSelection> chart;
  const JsonDocument document(request.text);
  if (const auto selection = document.root().object().optional("chart")) decode(*selection, chart.emplace());
  DocumentEngine::createPPTX(fromJson<SourceTable>(request.text), request.title(), chart);
}

TEST(DocumentEngine, RefusesDecksInTheOrderOfTheRules) {
  expectEditRefusals<Request>([] { return Request(); }, messages, R"table(
      "address":"A6"→"address":"A2" | lineage | ; ["1","2"]→["1","(61*i)"] | long cells | ; "3,1"→"(81*i)" | long cells |
      "valueColumn":1→"valueColumn":2 | chart rule | ; "4,1"→"(19*\n)" | tall row | ; "Title"→"(95*i)" | title |
      "title":"C"→"title":"(95*i)" | chart title | ; "2,1"→"a\u0001" | chart |)table",
                              createDeck);
  // 60 digits with 19 separators have 79 characters, with a decimal 81.
  for (const auto& [edits, key] : cases<2>(R"table(
      ["1","2"]→["1","(60*i)"] => ; "chart":→"": "3,1"→"(80*i)" =>
      "chart":→"": "2.5"}},→"(60*1)"}},"numberFormat":"#,##0", =>
      "chart":→"": "2.5"}},→"(60*1)"}},"numberFormat":"#,##0.0", => long cells)table")) {
    Request request;
    edit(request.text, edits);
    EXPECT_EQ(outcomeOf([&] { createDeck(request); }), refusalIn(messages, key)) << edits;
  }
}

TEST(DocumentEngine, RefusesWordDocumentsThatWouldShowOtherTexts) {
  for (const auto& [edits, key] : cases<2>(R"table(
      "1,1"→"(81*i)" => ; "1,1"→"a\u0001" => cells ; "1,1"→"a\rb" => cells ; "1,1"→"a\uFFFE" => cells
      "Title"→"\u0020" => bounds)table")) {
    Request request;
    edit(request.text, edits);
    const auto create = [&] {
      DocumentEngine::createDOCX(fromJson<SourceTable>(request.text), request.title());
    };
    EXPECT_EQ(outcomeOf(create), refusalIn(messages, key)) << edits;
  }
}

TEST(DocumentEngine, StopsWritingWhenTheDocumentIsTooLarge) {
  SourceTable table = tableOf(8, 200);
  const std::string text = "e" + repeated("\u0301", 10'000);
  for (auto& row : table.rows) {
    for (SourceCell& cell : row)
      cell.value = Value::text(text);
  }
  EXPECT_EQ(outcomeOf([&] { DocumentEngine::createDOCX(table, "Title"); }), "resourceLimit: output part");
}

}  // namespace
}  // namespace zelvo
