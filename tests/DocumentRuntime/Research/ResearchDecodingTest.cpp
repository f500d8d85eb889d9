#include <bit>
#include <cmath>
#include <cstdint>
#include <random>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/ResearchSpreadsheetCoding.hpp"
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
