// Owns the JSON of datasets, of responses and of host files.

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/HostDatasets.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

const std::string canonical =
    R"({"calculations":[{"column":1,"formula":{"arguments":[{"column":1,"endColumn":1,"endRow":1,"op":"range","row":1},)"
    R"({"op":"number","value":0.5}],"op":"sum"},"row":0}],"charts":[{"categoryColumn":0,"kind":"bar","title":"T",)"
    R"("valueColumns":[1]}],"columns":[{"kind":"date","name":"D"},{"kind":"number","name":"N","unit":""}],)"
    R"("report":"R","rows":[{"cells":["2024-01-01",null],"sourceIDs":["a"],"sources":[]},)"
    R"({"cells":[null,1e+17],"sources":["http://h/"]}]})";

const std::string minimal =
    R"({"rows":[{"sources":[],"cells":["x",1.0]}],"report":"R","columns":[{"name":"A","kind":"text","unit":null},)"
    R"({"name":"B","kind":"number"}],"charts":[],"calculations":null})";

ResearchSpreadsheet decoded(std::string_view response) {
  return ResearchSpreadsheet::decode(response, false, {}, {});
}

TEST(ResearchDecoding, TheCanonicalEncodingIsAFixedPoint) {
  EXPECT_EQ(fromJson<ResearchSpreadsheet>(canonical).encoded(), canonical);
  // Absent and null alike are left out, and a whole number has no point.
  EXPECT_EQ(
      decoded(minimal).encoded(),
      R"({"charts":[],"columns":[{"kind":"text","name":"A"},{"kind":"number","name":"B"}],"report":"R",)"
      R"("rows":[{"cells":["x",1],"sources":[]}]})");
}

TEST(ResearchDecoding, RemovesTheCodeFence) {
  for (const auto& [response, isDecoded] : cases<2>(R"(
      ```json␊JSON␊``` => yes ; ```␊JSON``` => yes ; ␍␊```json␍␊JSON␊```␊␉ => yes ; ```␠{␠␊JSON``` => yes
      ```JSON``` => no ; ```json␊JSON => no ; JSON␊``` => no ; ``␊JSON`` => no ; ```json␍JSON␍``` => no
      ``` => no ; ```␊``` => no)"
                                                    "\n \u00A0JSON\u2028 => yes")) {
    const std::string text = std::regex_replace(response, std::regex("JSON"), minimal);
    std::optional<ResearchSpreadsheet> found;
    const std::string error = decodingErrorOf([&] { found = decoded(text); });
    EXPECT_EQ(found, isDecoded == "yes" ? std::optional(decoded(minimal)) : std::nullopt)
        << response << error;
  }
}

TEST(ResearchDecoding, BoundsTheResponseWithoutItsFence) {
  const auto outcome = [](const std::string& json) { return outcomeOf([&] { decoded(json); }); };
  const auto fenced = [](std::size_t bytes) {
    return "```\n" + minimal + std::string(bytes - minimal.size(), ' ') + "\n```";
  };
  EXPECT_EQ(outcome(fenced(239'999)), "");
  EXPECT_EQ(outcome(fenced(240'000)), "resourceLimit: spreadsheet response");
  // The size is checked before the JSON.
  EXPECT_EQ(outcome(std::string(240'001, '{')), "resourceLimit: spreadsheet response");
}

TEST(ResearchDecoding, NamesThePlaceOfAWrongShape) {
  for (const auto& [from, to, path] : cases<3>(R"(
      "date" | "Date" => columns[0].kind ; "bar" | "pie" => charts[0].kind
      "sum" | "power" => calculations[0].formula.op ; "row":0} | "row":0.5} => calculations[0].row
      "value":0.5 | "value":"0.5" => calculations[0].formula.arguments[1].value
      null] | true] => rows[0].cells[1] ; null] | []] => rows[0].cells[1] ; null] | {}] => rows[0].cells[1]
      null] | 1e999] => rows[0].cells[1] ; ["a"] | [null] => rows[0].sourceIDs[0]
      "sources":[] | "sources":null => rows[0].sources ; "report":"R", | => ; "unit":"" | "unit":0 => columns[1].unit)")) {
    const std::string text = replaced(canonical, from, to);
    const std::string error = decodingErrorOf([&] { decoded(text); });
    EXPECT_EQ(error.substr(0, error.find(": ")), path) << to;
  }
  EXPECT_EQ(decodingErrorOf([] { decoded("\xFF"); }), ": The text is not UTF-8.");
}

TEST(ResearchDecoding, BoundsDatasetsOfTheHostByTheRules) {
  // Longer than a response may be: texts that no chart shows have no limit in bytes.
  const std::string spacious =
      replaced(canonical, R"("report":"R")", R"("report":")" + characters(90'000) + '"');
  EXPECT_EQ(hostDatasetFromJson(spacious), fromJson<ResearchSpreadsheet>(spacious));
  EXPECT_EQ(hostDatasetsFromJson(R"([{"id":"a","content":)" + canonical + "}]").at(0).content.encoded(),
            canonical);

  // Of two members with the same name, the last counts.
  const std::string start = R"({"report":"","columns":[],"rows":[],"charts":[],)";
  for (const auto& [member, last, error] :
       cases<3>(R"(
      "columns":[#{"kind":"text","name":""}#] | 12 | columns: Expected at most 12 entries.
      "rows":[#{"cells":[],"sources":[]}#] | 500 | rows: Expected at most 500 entries.
      "charts":[#{"categoryColumn":0,"kind":"bar","title":"","valueColumns":[]}#] | 4 | charts: Expected at most 4 entries.
      "calculations":[#{"column":0,"row":0,"formula":{"op":"sum"}}#] | 1000 | calculations: Expected at most 1000 entries.
      "rows":[{"sources":[],"cells":[#0#]}] | 12 | rows[0].cells: Expected at most 12 entries.
      "rows":[{"cells":[],"sources":[#""#]}] | 8 | rows[0].sources: Expected at most 8 entries.
      "charts":[{"categoryColumn":0,"kind":"bar","title":"","valueColumns":[#0#]}] | 4 | )"
                R"(charts[0].valueColumns: Expected at most 4 entries.
      "columns":[{"kind":"text","name":"","unit":"#u#"}] | 8000 | columns[0].unit: Expected at most 8000 bytes.
      "charts":[{"categoryColumn":0,"kind":"bar","title":"","valueColumns":[]}],"rows":[{"sources":[],"cells":["#l#"]}] | )"
                R"(8000 | rows[0].cells[0]: Expected at most 8000 bytes.
      "calculations":[{"column":0,"row":0,"formula":{"op":"sum","arguments":[#{"op":"sum"}#]}}] | 49999 | )"
                R"(calculations[0].formula.arguments[49999]: The formulas have too many nodes.)"))
    EXPECT_EQ(errorsAtBound(start + member + "}", last, hostDatasetFromJson), error);
}

}  // namespace
}  // namespace zelvo
