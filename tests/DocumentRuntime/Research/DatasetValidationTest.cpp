// Owns the rules of datasets and their charts.

#include <cmath>
#include <limits>
#include <numeric>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

DocumentError failed(const char* detail) {
  return DocumentError::validationFailed(detail);
}

const auto shape = failed("Supply a report and a bounded table with unique column names.");
const auto rowShape = failed("Every row must match the columns.");
const auto wrongText = failed("Use null for missing numbers; units belong in column headings.");
const auto wrongNumber = failed("Numeric cells must contain finite JSON numbers.");
const auto notReturned = failed("Each researched row needs an exact URL returned by the research tools.");
const auto outsideScope = failed(
    "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.");
const auto wrongURL = failed("Invalid source URL.");
const auto chartMissing = failed("The requested chart is missing.");
const auto chartColumns =
    failed("Chart columns must be valid and share a unit; separate incomparable metrics.");
const auto chartCategories = failed(
    "Chart observations need unique identified periods/categories. Conflicting source observations cannot "
    "silently become duplicate points.");
const auto chartValues =
    failed("A chart needs observed numeric values and category labels. Never turn missing values into zero.");

const std::vector<std::string> yearURLs = {"https://example.org/2022", "https://example.org/2023",
                                           "https://example.org/2024"};

struct Input {
  ResearchSpreadsheet dataset = yearlyProfit();
  bool requiresChart = true;
  AllowedSources allowedSources;
  std::optional<ResearchSourceScope> scope;

  Column& column(std::size_t index) { return dataset.columns[index]; }
  Row& row() { return dataset.rows.front(); }
  Cell& cell(std::size_t column) { return row().cells[column]; }
  Chart& chart() { return dataset.charts.front(); }
  void setLabel(std::size_t index, std::string name, std::optional<std::string> unit = {}) {
    column(index) = {std::move(name), Column::Kind::text, std::move(unit)};
  }
};
using I = Input&;

void validate(const Input& input) {
  input.dataset.validate(input.requiresChart, input.allowedSources, input.scope);
}

Outcome outcome(const Input& input) {
  return outcomeOf([&] { validate(input); });
}

auto ids(std::vector<std::string> list) {
  return [list = std::move(list)](I i) { i.row().sourceIDs = list; };
}

auto series(std::vector<std::int64_t> columns) {
  return [columns = std::move(columns)](I i) { i.chart().valueColumns = columns; };
}

void leaveTheScope(I i) {
  i.allowedSources.emplace();  // the list would refuse as well, but it is not looked at
  i.scope.emplace(std::vector<std::string>{"a"}, std::map<std::string, std::string>(),
                  std::vector<ResearchSourceScope::Record>());
}

void mixUnits(I i) {
  i.column(3).unit.reset();
  i.chart().valueColumns = {2, 3};
  for (Calculation& calculation : *i.dataset.calculations)
    calculation.formula = constant(1);
}

void repeatANumber(I i) {
  i.chart() = {.title = "t", .kind = Chart::Kind::bar, .categoryColumn = 2, .valueColumns = {3}};
  i.cell(2) = i.dataset.rows[1].cells[2] = numberCell(2024);
}

void observeOnce(I i) {
  i.chart().valueColumns = {2, 3};
  for (std::size_t row : {1U, 2U})
    i.dataset.rows[row].cells[2] = blankCell();
}

std::vector<Refusal<Input>> refusals() {
  constexpr auto farthest = std::numeric_limits<std::int64_t>::max();
  std::vector<Refusal<Input>> urls;
  for (const char* url :
       {"ftp://h/", "HTTP://h/", "http:///a", "http://user@h/", "http://:p@h/", "http://@h", "h", ""})
    urls.push_back({url, [url](I i) { i.row().sources = {url}; }, wrongURL, "row/sources"});
  return joined<Input>({
      {{"blank report", [](I i) { i.dataset.report = " \n\u2028\t"; }, shape},
       {"one column", [](I i) { i.dataset.columns.resize(1); }, shape, "columns"},
       {"no rows", [](I i) { i.dataset.rows.clear(); }, shape, "rows"},
       {"same label", [](I i) { i.setLabel(3, "a (usd)"); }, shape, "columns/3"},
       {"no name", [](I i) { i.column(0).name = ""; }, shape, "columns/0"},
       {"reserved label", [](I i) { i.column(0).name = "SOURCES"; }, shape, "columns/0"},
       {"a cell too many", [](I i) { i.row().cells.push_back(blankCell()); }, rowShape, "row/cells"},
       {"empty source ID", ids({"a", ""}), rowShape, "row/ids"},
       {"slash in a source ID", ids({"a/b"}), rowShape, "row/ids"},
       {"accent in a source ID", ids({"é"}), rowShape, "row/ids"},
       {"no date", [](I i) { i.cell(1) = textCell("2023-02-29"); }, wrongText, "row/cells/1"},
       {"date and time", [](I i) { i.cell(1) = textCell("2024-02-29T00:00"); }, wrongText, "row/cells/1"},
       {"number as a date", [](I i) { i.cell(1) = numberCell(2024); }, wrongNumber, "row/cells/1"},
       {"text as a number", [](I i) { i.cell(2) = textCell("12 %"); }, wrongText, "row/cells/2"},
       {"infinity", [](I i) { i.cell(2) = numberCell(HUGE_VAL); }, wrongNumber, "row/cells/2"},
       {"NaN", [](I i) { i.cell(2) = numberCell(std::nan("")); }, wrongNumber, "row/cells/2"},
       {"negative bound", [](I i) { i.cell(2) = numberCell(-1e15); }, wrongNumber, "row/cells/2"},
       {"URL off the list", [](I i) { i.allowedSources = {yearURLs[0] + "/"}; }, notReturned, "row/sources"},
       {"nothing is allowed", [](I i) { i.allowedSources.emplace(); }, notReturned, "row/sources"},
       {"no URL", [](I i) { i.allowedSources = yearURLs, i.row().sources.clear(); }, notReturned,
        "row/sources"},
       {"ID with a list", [](I i) { i.allowedSources = yearURLs, ids({"a"})(i); }, notReturned,
        "row/sources"},
       {"outside the scope", leaveTheScope, outsideScope, "row/sources"}},
      urls,
      {{"calculation over a text", [](I i) { i.dataset.calculations->front().formula = cellAt(0, 0); },
        failed("Formula references must address numeric dataset cells.")},
       {"no chart", [](I i) { i.dataset.charts.clear(); }, chartMissing, "chart"},
       {"no title", [](I i) { i.chart().title = ""; }, chartColumns, "chart"},
       {"negative category", [](I i) { i.chart().categoryColumn = -1; }, chartColumns, "chart"},
       {"no such category", [](I i) { i.chart().categoryColumn = 5; }, chartColumns, "chart"},
       {"no series", series({}), chartColumns, "chart"},
       {"negative series", series({2, -1}), chartColumns, "chart"},
       {"no such series", series({2, 5}), chartColumns, "chart"},
       {"far series", series({2, farthest}), chartColumns, "chart"},
       {"series twice", series({2, 2}), chartColumns, "chart"},
       {"series of texts", series({2, 1}), chartColumns, "chart"},
       {"series is the category", [](I i) { i.chart().categoryColumn = 2; }, chartColumns, "chart"},
       {"another unit", mixUnits, chartColumns, "chart"},
       {"alike once trimmed", [](I i) { i.cell(0) = textCell("2023 "); }, chartCategories, "row/cells/0"},
       {"the same number as categories", repeatANumber, chartCategories, "chart"},
       {"blank category", [](I i) { i.cell(0) = blankCell(); }, chartCategories, "row/cells/0"},
       {"one observation in a line", observeOnce, chartValues}},
  });
}

TEST(ResearchValidation, RefusesInTheOrderOfItsChecks) {
  expectRefusals<Input>([] { return Input(); }, refusals(), validate);
}

// The second chart's columns are looked at only after the first one's observations, the second row's shape
// only after the first row's sources.
TEST(ResearchValidation, FinishesARowAndAChartBeforeTheNext) {
  Input rows;
  rows.row().sources = {"ftp://h/"};
  rows.dataset.rows[1].cells.pop_back();
  EXPECT_EQ(outcome(rows), wrongURL);

  Input charts;
  charts.chart().categoryColumn = 1;
  charts.dataset.rows[1].cells[1] = charts.cell(1);
  charts.dataset.charts.push_back({});
  EXPECT_EQ(outcome(charts), chartCategories);
}

void setColumns(I i, std::size_t count) {
  i.dataset = numericTable(std::vector<std::optional<std::string>>(count, "USD"));
  i.dataset.rows = {numberRow(std::vector<std::optional<double>>(count, 1)),
                    numberRow(std::vector<std::optional<double>>(count, 2))};
  i.dataset.charts = {{"T", Chart::Kind::line, 0, {1}}};
}

void setRows(I i, std::size_t count) {
  i.dataset.rows.resize(count, numberRow({{}, {}, {}, {}, {}}));
}

void setSeries(I i, std::size_t count) {
  setColumns(i, 6);
  i.chart().valueColumns.resize(count);
  std::iota(i.chart().valueColumns.begin(), i.chart().valueColumns.end(), 1);
}

TEST(ResearchValidation, LimitsHoldAtTheirBound) {
  using N = std::size_t;
  const std::vector<Limit<Input>> limits = {
      {"report", 60'000, shape, [](I i, N n) { i.dataset.report = characters(n); }},
      {"columns", 12, shape, setColumns},
      {"rows", 500, shape, setRows},
      {"charts", 4, shape, [](I i, N n) { i.dataset.charts.resize(n, i.chart()); }},
      {"label", 120, shape, [](I i, N n) { i.setLabel(0, characters(n - 4), "m"); }},
      {"sources", 8, rowShape, [](I i, N n) { i.row().sources.resize(n, "http://h"); }},
      {"source IDs", 8, rowShape, [](I i, N n) { i.row().sourceIDs.emplace(n, "a"); }},
      {"source ID", 160, rowShape, [](I i, N n) { ids({std::string(n, 'a')})(i); }},
      {"text", 2000, wrongText, [](I i, N n) { i.cell(0) = textCell(characters(n)); }},
      {"number", 999'999'999'999'999, wrongNumber, [](I i, N n) { i.cell(2) = numberCell(double(n)); }},
      {"chart title", 160, chartColumns, [](I i, N n) { i.chart().title = characters(n); }},
      {"series", 4, chartColumns, setSeries},
  };
  expectLimits(limits, validate);
}

void addRowWithoutValues(I i) {
  i.dataset.rows.push_back({{blankCell(), blankCell(), blankCell(), numberCell(1), blankCell()}, {}, {}});
}

void allowNothing(I i) {
  i.allowedSources.emplace();
  for (Row& row : i.dataset.rows)
    row.sources.clear();
}

void repeatAName(I i) {
  i.column(3) = {"A", Column::Kind::number, "EUR"};
  i.dataset.calculations.reset();
  i.chart().valueColumns = {2};
}

void showOneBar(I i) {
  i.chart().kind = Chart::Kind::bar;
  i.dataset.rows.resize(1);
  i.dataset.calculations->resize(1);
}

TEST(ResearchValidation, Accepts) {
  const std::pair<const char*, void (*)(I)> rows[] = {
      {"no chart if none is required", [](I i) { i.requiresChart = false, i.dataset.charts.clear(); }},
      {"same name with another unit", repeatAName},
      {"a column Sources with a unit", [](I i) { i.setLabel(0, "Sources", ""); }},
      {"no URL if none is allowed", allowNothing},
      {"no IDs with allowed sources", [](I i) { i.allowedSources = yearURLs, i.row().sourceIDs.emplace(); }},
      {"a row without values has no category", addRowWithoutValues},
      {"one observation in a bar chart", showOneBar}};
  for (const auto& [name, change] : rows) {
    Input input;
    change(input);
    EXPECT_EQ(outcome(input), "") << name;
  }
}

}  // namespace
}  // namespace zelvo
