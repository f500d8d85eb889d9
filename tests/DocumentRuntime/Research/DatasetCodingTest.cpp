// Owns the JSON of datasets, of responses and of host files.

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
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

std::string decodingErrorPath(const std::string& json) {
  try {
    decoded(json);
  } catch (const DecodingError& error) {
    return error.path();
  }
  return "no error";
}

TEST(ResearchDecoding, TheCanonicalEncodingIsAFixedPoint) {
  EXPECT_EQ(fromJson<ResearchSpreadsheet>(canonical).encoded(), canonical);
  // Absent and null alike are left out, and a whole number has no point.
  EXPECT_EQ(
      decoded(minimal).encoded(),
      R"({"charts":[],"columns":[{"kind":"text","name":"A"},{"kind":"number","name":"B"}],"report":"R",)"
      R"("rows":[{"cells":["x",1],"sources":[]}]})");
}

TEST(ResearchDecoding, TakesOffTheCodeFence) {
  const ResearchSpreadsheet expected = decoded(minimal);
  for (const std::string& response :
       {"```json\n" + minimal + "\n```", "```\n" + minimal + "```",
        "\u00A0\r\n```json\r\n" + minimal + "\n```\n\u2028", "``` { \n" + minimal + "```"}) {
    EXPECT_EQ(decoded(response), expected) << response.substr(0, 12);
  }
  for (const std::string& response :
       {"```" + minimal + "```", "```json\n" + minimal, minimal + "\n```", "``\n" + minimal + "``",
        "```json\r" + minimal + "\r```", std::string("```"), std::string("```\n```")}) {
    EXPECT_EQ(decodingErrorPath(response), "") << response.substr(0, 12);
  }
}

TEST(ResearchDecoding, BoundsTheResponseWithoutItsFence) {
  const auto outcome = [](const std::string& json) { return outcomeOf([&] { decoded(json); }); };
  const auto fenced = [](std::size_t bytes) {
    return "```\n" + minimal + std::string(bytes - minimal.size(), ' ') + "\n```";
  };
  EXPECT_EQ(outcome(fenced(239'999)), "");
  EXPECT_EQ(outcome(fenced(240'000)), "resourceLimit: spreadsheet response");
  // The size comes before the JSON, and JSON before the rules.
  EXPECT_EQ(outcome(std::string(240'001, '{')), "resourceLimit: spreadsheet response");
  EXPECT_EQ(decodingErrorPath(R"({"report":"","columns":[],"rows":[],"charts":[1]})"), "charts[0]");
}

TEST(ResearchDecoding, NamesThePlaceOfAWrongShape) {
  for (const auto& [from, to, path] : cases<3>(R"(
      "date" | "Date" => columns[0].kind ; "bar" | "pie" => charts[0].kind
      "sum" | "power" => calculations[0].formula.op ; "row":0} | "row":0.5} => calculations[0].row
      "value":0.5 | "value":"0.5" => calculations[0].formula.arguments[1].value
      null] | true] => rows[0].cells[1] ; null] | []] => rows[0].cells[1] ; null] | {}] => rows[0].cells[1]
      null] | 1e999] => rows[0].cells[1] ; ["a"] | [null] => rows[0].sourceIDs[0]
      "sources":[] | "sources":null => rows[0].sources ; "report":"R", | => ; "unit":"" | "unit":0 => columns[1].unit)"))
    EXPECT_EQ(decodingErrorPath(replaced(canonical, from, to)), path) << to;
  EXPECT_EQ(decodingErrorPath("\xFF"), "");
}

std::string hostErrorOf(const std::string& json) {
  try {
    hostDatasetFromJson(json);
  } catch (const DecodingError& error) {
    return error.what();
  }
  return "no error";
}

TEST(ResearchDecoding, BoundsAHostsDatasetsByTheRules) {
  const std::string chart = R"({"categoryColumn":0,"kind":"bar","title":"","valueColumns":[]})";
  const std::string calculation = R"({"column":0,"row":0,"formula":{"op":"sum"}})";
  // Longer than a response may be: what no chart shows has no limit in bytes.
  const std::string spacious =
      replaced(canonical, R"("report":"R")", R"("report":")" + characters(90'000) + '"');
  EXPECT_EQ(hostDatasetFromJson(spacious), fromJson<ResearchSpreadsheet>(spacious));
  EXPECT_EQ(hostDatasetsFromJson(R"([{"id":"a","content":)" + canonical + "}]").at(0).content.encoded(),
            canonical);

  const struct {
    std::string before, entry, separator, after;
    std::size_t last;
    std::string path, message;
  } rows[] = {
      {R"("columns":[)", R"({"kind":"text","name":""})", ",", "]}", 12, "columns", "12 entries"},
      {R"("rows":[)", R"({"cells":[],"sources":[]})", ",", "]}", 500, "rows", "500 entries"},
      {R"("charts":[)", chart, ",", "]}", 4, "charts", "4 entries"},
      {R"("calculations":[)", calculation, ",", "]}", 1000, "calculations", "1000 entries"},
      {R"("rows":[{"sources":[],"cells":[)", "0", ",", "]}]}", 12, "rows[0].cells", "12 entries"},
      {R"("rows":[{"cells":[],"sources":[)", "\"\"", ",", "]}]}", 8, "rows[0].sources", "8 entries"},
      {R"("rows":[{"cells":[],"sources":[],"sourceIDs":[)", "\"\"", ",", "]}]}", 8, "rows[0].sourceIDs",
       "8 entries"},
      {R"("charts":[{"categoryColumn":0,"kind":"bar","title":"","valueColumns":[)", "0", ",", "]}]}", 4,
       "charts[0].valueColumns", "4 entries"},
      {R"("columns":[{"kind":"text","unit":")", "u", "", R"(","name":""}]})", 8000, "columns[0].unit",
       "8000 bytes"},
      {R"("columns":[{"kind":"text","name":")", "n", "", R"("}]})", 8000, "columns[0].name", "8000 bytes"},
      {R"("charts":[{"categoryColumn":0,"kind":"bar","valueColumns":[],"title":")", "t", "", R"("}]})", 8000,
       "charts[0].title", "8000 bytes"},
      {R"("charts":[)" + chart + R"(],"rows":[{"sources":[],"cells":[")", "l", "", R"("]}]})", 8000,
       "rows[0].cells[0]", "8000 bytes"},
  };
  const std::string start =
      R"({"report":"","columns":[],"rows":[],"charts":[],)";  // of two members the last counts
  for (const auto& [before, entry, separator, after, last, path, message] : rows) {
    std::string json = start + before + repeated(entry + separator, last - 1) + entry;
    EXPECT_NO_THROW(hostDatasetFromJson(json + after)) << path;
    EXPECT_EQ(hostErrorOf(json + separator + entry + after), path + ": Expected at most " + message + ".");
  }
  const std::string formula =
      start + R"("calculations":[{"column":0,"row":0,"formula":{"op":"sum","arguments":[)";
  const std::string nodes = repeated(R"({"op":"sum"},)", 49'998) + R"({"op":"sum"}]}}]})";
  EXPECT_NO_THROW(hostDatasetFromJson(formula + nodes));
  EXPECT_EQ(hostErrorOf(formula + R"({"op":"sum"},)" + nodes),
            "calculations[0].formula.arguments[49999]: The formulas have too many nodes.");
}

TEST(ResearchDecoding, EveryNumberSurvives) {
  std::mt19937_64 random(20240229);
  Row row;
  for (int i = 0; i < 200'000; ++i) {
    const auto value = std::bit_cast<double>(random());
    row.cells.push_back(numberCell(std::isfinite(value) ? value : -0.0));
  }
  const auto again = fromJson<Row>(toJson(row));
  ASSERT_EQ(again.cells.size(), row.cells.size());
  const auto bits = [](const Cell& cell) { return std::bit_cast<std::uint64_t>(*cell.number()); };
  for (std::size_t i = 0; i < row.cells.size(); ++i)
    ASSERT_EQ(bits(again.cells[i]), bits(row.cells[i]));
}

TEST(ResearchDecoding, ProvenanceText) {
  const std::optional<std::vector<std::string>> ids = {{"b", "a"}};
  EXPECT_EQ((Row{{}, {"http://x", "http://y"}, ids}.provenanceText()),
            "Source ID: b\nSource ID: a\nhttp://x\nhttp://y");
  EXPECT_EQ((Row{{}, {"http://x"}, {}}.provenanceText()), "http://x");
  EXPECT_EQ((Row{{}, {}, {}}.provenanceText()), "");
}

}  // namespace
}  // namespace zelvo
