// Owns the baseline of a bar chart's value axis; the expected packages pin all other bytes of charts.

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"

namespace zelvo {
namespace {

using testing::numberRow;

TEST(ResearchCharts, PinBarsAtZeroIfAllValuesAreOnOneSide) {
  using enum testing::Chart::Kind;
  const struct {
    testing::Chart::Kind kind;
    std::vector<std::vector<std::optional<double>>> values;
    bool zeroBaseline;
    std::string limit;
  } rows[] = {{bar, {{3, {}}, {{}, 5}}, true, R"(<c:min val="0"/>)"},
              {bar, {{0, 0}}, true, R"(<c:min val="0"/>)"},
              {bar, {{-0.5, 0}, {{}, {}}}, true, R"(<c:max val="0"/>)"},
              {bar, {{-1, 1}}, true, ""},
              {bar, {{{}, {}}}, true, ""},
              {bar, {{3, 5}}, false, ""},
              {line, {{3, 5}}, true, ""}};
  for (const auto& [kind, values, zeroBaseline, limit] : rows) {
    std::vector<std::vector<testing::Cell>> cells;
    for (const auto& row : values)
      cells.push_back(numberRow(row).cells);
    const std::string xml = ResearchChartAuthor::xml(
        testing::numericTable({"USD", "USD"}), cells,
        {.title = "T", .kind = kind, .categoryColumn = 0, .valueColumns = {1, 0}}, false, {}, zeroBaseline);
    EXPECT_NE(xml.find(R"("minMax"/>)" + limit + R"(</c:scaling><c:axPos val="l"/>)"), std::string::npos)
        << xml;
  }
}

}  // namespace
}  // namespace zelvo
