#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"

namespace zelvo {
namespace {

using testing::numberRow;

/// The chart over a text column "Year" and number columns "A" and "B" with these rows.
std::string chartOf(testing::Chart::Kind kind, const std::vector<std::vector<std::optional<double>>>& values,
                    bool zeroBaseline = true, bool embedded = false) {
  ResearchSpreadsheet dataset = testing::numericTable({"USD", ""});
  dataset.columns.insert(dataset.columns.begin(),
                         {.name = "Year", .kind = testing::Column::Kind::text, .unit = {}});
  std::vector<std::vector<testing::Cell>> cells;
  for (const auto& row : values) {
    cells.push_back(numberRow(row).cells);
    cells.back().insert(cells.back().begin(),
                        testing::textCell("<y>\t" + std::to_string(cells.size()) + "\n"));
  }
  return ResearchChartAuthor::xml(
      dataset, cells, {.title = "T", .kind = kind, .categoryColumn = 0, .valueColumns = {2, 1}}, embedded,
      embedded ? std::map<std::int64_t, std::int64_t>{{2, 1}, {1, 5}}
               : std::map<std::int64_t, std::int64_t>(),
      zeroBaseline);
}

bool holds(const std::string& xml, std::string_view piece) {
  return xml.find(piece) != std::string::npos;
}

TEST(ResearchChartAuthor, PinsBarsAtZeroWhereAllValuesLieOnOneSide) {
  using enum testing::Chart::Kind;
  struct Case {
    testing::Chart::Kind kind;
    std::vector<std::vector<std::optional<double>>> values;
    bool zeroBaseline;
    const char* limit;
  };
  const Case cases[] = {
      {bar,
       {{3, {}}, {{}, 5}},
       true,
       R"(<c:orientation val="minMax"/><c:min val="0"/></c:scaling><c:axPos val="l"/>)"},
      {bar, {{0, 0}}, true, R"("minMax"/><c:min val="0"/></c:scaling><c:axPos val="l"/>)"},
      {bar, {{-0.5, 0}, {{}, {}}}, true, R"("minMax"/><c:max val="0"/></c:scaling><c:axPos val="l"/>)"},
      {bar, {{-1, 1}}, true, R"("minMax"/></c:scaling><c:axPos val="l"/>)"},
      {bar, {{{}, {}}}, true, R"("minMax"/></c:scaling><c:axPos val="l"/>)"},
      {bar, {{3, 5}}, false, R"("minMax"/></c:scaling><c:axPos val="l"/>)"},
      {line, {{3, 5}}, true, R"("minMax"/></c:scaling><c:axPos val="l"/>)"},
  };
  for (const auto& [kind, values, zeroBaseline, limit] : cases) {
    EXPECT_TRUE(holds(chartOf(kind, values, zeroBaseline), limit)) << limit << values.size();
  }
}

TEST(ResearchChartAuthor, ShowsMissingValuesAsGapsAndFollowsTheColumnMap) {
  const std::string xml = chartOf(testing::Chart::Kind::bar, {{7, 3}, {{}, {}}, {8, 5}}, true, true);
  EXPECT_TRUE(holds(
      xml,
      R"(<c:f>'Data'!$A$2:$A$4</c:f><c:strCache><c:ptCount val="3"/><c:pt idx="0"><c:v>&lt;y&gt;1</c:v></c:pt>)"));
  EXPECT_TRUE(holds(xml, R"(<c:order val="0"/><c:tx><c:v>B</c:v></c:tx>)"));
  EXPECT_TRUE(holds(xml, R"(<c:order val="1"/><c:tx><c:v>A (USD)</c:v></c:tx>)"));
  EXPECT_TRUE(holds(
      xml, R"('Data'!$B$2:$B$4</c:f><c:numCache><c:formatCode>#,##0.##</c:formatCode><c:ptCount val="3"/>)"
           R"(<c:pt idx="0"><c:v>3.0</c:v></c:pt><c:pt idx="2"><c:v>5.0</c:v></c:pt></c:numCache>)"));
  EXPECT_TRUE(holds(xml, "'Data'!$F$2:$F$4"));
  EXPECT_TRUE(holds(
      xml,
      R"(drawingml/2006/main" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"));
  EXPECT_TRUE(xml.ends_with(
      R"(<c:externalData r:id="rId1"><c:autoUpdate val="0"/></c:externalData></c:chartSpace>)"));
}

}  // namespace
}  // namespace zelvo
