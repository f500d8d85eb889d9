#include <cmath>
#include <functional>
#include <limits>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

const std::string shape = "Supply a report and a bounded table with unique column names.";
const std::string rowShape = "Every row must match the columns.";
const std::string wrongText = "Use null for missing numbers; units belong in column headings.";
const std::string wrongNumber = "Numeric cells must contain finite JSON numbers.";
const std::string notReturned = "Each researched row needs an exact URL returned by the research tools.";
const std::string outsideScope =
    "Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.";
const std::string wrongURL = "Invalid source URL.";
const std::string chartMissing = "The requested chart is missing.";
const std::string chartColumns =
    "Chart columns must be valid and share a unit; separate incomparable metrics.";
const std::string chartCategories =
    "Chart observations need unique identified periods/categories. Conflicting source observations cannot "
    "silently "
    "become duplicate points.";
const std::string chartValues =
    "A chart needs observed numeric values and category labels. Never turn missing values into zero.";

struct Input {
  ResearchSpreadsheet dataset = yearlyProfit();
  bool requiresChart = true;
  AllowedSources allowedSources;
  std::optional<ResearchSourceScope> scope;

  Row& row() { return dataset.rows.front(); }
  Chart& chart() { return dataset.charts.front(); }
};

using Spoil = std::function<void(Input&)>;

void validate(const Input& input) {
  input.dataset.validate(input.requiresChart, input.allowedSources, input.scope);
}

Refusal<Input> refusal(std::string name, const std::string& message, Spoil spoil, std::string place = {}) {
  return {std::move(name), std::move(spoil), DocumentError::validationFailed(message), std::move(place)};
}

Refusal<Input> notAllowed(std::string name, Spoil spoil) {
  return refusal(std::move(name), notReturned, std::move(spoil), "row/sources");
}

std::vector<Refusal<Input>> refusals() {
  const auto badColumn = [](std::int64_t column) {
    return [column](Input& input) { input.chart().valueColumns = {2, column}; };
  };
  std::vector<Refusal<Input>> rows = {
      refusal("blank report", shape, [](Input& i) { i.dataset.report = " \n\u2028\t"; }),
      refusal(
          "one column", shape, [](Input& i) { i.dataset.columns.resize(1); }, "columns"),
      refusal(
          "no rows", shape, [](Input& i) { i.dataset.rows.clear(); }, "rows"),
      refusal(
          "same label", shape,
          [](Input& i) {
            i.dataset.columns[3] = {"a (usd)", Column::Kind::text, {}};
          },
          "columns/3"),
      refusal(
          "no name", shape, [](Input& i) { i.dataset.columns[0].name = ""; }, "columns/0"),
      refusal(
          "reserved label", shape, [](Input& i) { i.dataset.columns[0].name = "SOURCES"; }, "columns/0"),

      refusal(
          "a cell too many", rowShape, [](Input& i) { i.row().cells.push_back(blankCell()); }, "row/cells"),
      refusal(
          "empty source ID", rowShape,
          [](Input& i) {
            i.row().sourceIDs = {"a", ""};
          },
          "row/ids"),
      refusal(
          "slash in a source ID", rowShape, [](Input& i) { i.row().sourceIDs = {"a/b"}; }, "row/ids"),
      refusal(
          "accent in a source ID", rowShape, [](Input& i) { i.row().sourceIDs = {"é"}; }, "row/ids"),

      refusal(
          "text that is no date", wrongText, [](Input& i) { i.row().cells[1] = textCell("2023-02-29"); },
          "row/cells/1"),
      refusal(
          "date and time", wrongText, [](Input& i) { i.row().cells[1] = textCell("2024-02-29T00:00"); },
          "row/cells/1"),
      refusal(
          "number as a date", wrongNumber, [](Input& i) { i.row().cells[1] = numberCell(2024); },
          "row/cells/1"),
      refusal(
          "text as a number", wrongText, [](Input& i) { i.row().cells[2] = textCell("12 %"); },
          "row/cells/2"),
      refusal(
          "infinity", wrongNumber, [](Input& i) { i.row().cells[2] = numberCell(HUGE_VAL); }, "row/cells/2"),
      refusal(
          "NaN", wrongNumber, [](Input& i) { i.row().cells[2] = numberCell(std::nan("")); }, "row/cells/2"),
      refusal(
          "negative bound", wrongNumber, [](Input& i) { i.row().cells[2] = numberCell(-1e15); },
          "row/cells/2"),

      notAllowed("URL off the list", [](Input& i) { i.allowedSources = {"https://example.org/2022/"}; }),
      notAllowed("nothing is allowed", [](Input& i) { i.allowedSources.emplace(); }),
      notAllowed("no URL of the list",
                 [](Input& i) {
                   i.allowedSources = {"https://example.org/2022"};
                   i.row().sources.clear();
                 }),
      notAllowed("ID with a list",
                 [](Input& i) {
                   i.allowedSources = {"https://example.org/2022", "https://example.org/2023",
                                       "https://example.org/2024"};
                   i.row().sourceIDs = {"a"};
                 }),
      // The list would refuse as well, but it is not looked at.
      refusal(
          "outside the scope", outsideScope,
          [](Input& i) {
            i.allowedSources.emplace();
            i.scope.emplace(std::vector<std::string>{"a"}, std::map<std::string, std::string>(),
                            std::vector<ResearchSourceScope::Record>());
          },
          "row/sources"),
  };
  for (const char* url :
       {"ftp://h/", "HTTP://h/", "http:///a", "http://user@h/", "http://:p@h/", "http://@h", "h", ""}) {
    rows.push_back(refusal(
        std::string("URL ") + url, wrongURL, [url](Input& i) { i.row().sources = {url}; }, "row/sources"));
  }
  rows.push_back(refusal("calculation over a text", "Formula references must address numeric dataset cells.",
                         [](Input& i) { i.dataset.calculations->front().formula = cellAt(0, 0); }));
  const std::vector<Refusal<Input>> ofCharts = {
      refusal(
          "no chart", chartMissing, [](Input& i) { i.dataset.charts.clear(); }, "chart"),
      refusal(
          "no title", chartColumns, [](Input& i) { i.chart().title = ""; }, "chart"),
      refusal(
          "negative category", chartColumns, [](Input& i) { i.chart().categoryColumn = -1; }, "chart"),
      refusal(
          "no such category", chartColumns, [](Input& i) { i.chart().categoryColumn = 5; }, "chart"),
      refusal(
          "no series", chartColumns, [](Input& i) { i.chart().valueColumns.clear(); }, "chart"),
      refusal("negative series", chartColumns, badColumn(-1), "chart"),
      refusal("no such series", chartColumns, badColumn(5), "chart"),
      refusal("far series", chartColumns, badColumn(std::numeric_limits<std::int64_t>::max()), "chart"),
      refusal("series twice", chartColumns, badColumn(2), "chart"),
      refusal("series of texts", chartColumns, badColumn(1), "chart"),
      refusal(
          "series is the category", chartColumns, [](Input& i) { i.chart().categoryColumn = 2; }, "chart"),
      refusal(
          "another unit", chartColumns,
          [](Input& i) {
            i.dataset.columns[3].unit.reset();
            i.chart().valueColumns = {2, 3};
            for (Calculation& calculation : *i.dataset.calculations)
              calculation.formula = constant(1);
          },
          "chart"),
      refusal(
          "categories alike once trimmed", chartCategories,
          [](Input& i) { i.row().cells[0] = textCell("2023 "); }, "row/cells/0"),
      refusal(
          "blank category", chartCategories, [](Input& i) { i.row().cells[0] = blankCell(); }, "row/cells/0"),
      refusal("one observation in a line", chartValues,
              [](Input& i) {
                i.chart().valueColumns = {2, 3};
                i.dataset.rows[1].cells[2] = blankCell();
                i.dataset.rows[2].cells[2] = blankCell();
              }),
  };
  rows.insert(rows.end(), ofCharts.begin(), ofCharts.end());
  return rows;
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
  EXPECT_EQ(describe(errorOf([&] { validate(rows); })),
            DocumentError::validationFailed(wrongURL).errorDescription());

  Input charts;
  charts.chart().categoryColumn = 1;
  charts.dataset.rows[1].cells[1] = charts.row().cells[1];
  charts.dataset.charts.push_back({});
  EXPECT_EQ(describe(errorOf([&] { validate(charts); })),
            DocumentError::validationFailed(chartCategories).errorDescription());
}

TEST(ResearchValidation, LimitsHoldAtTheirBound) {
  const auto addColumns = [](Input& input, std::size_t count) {
    while (input.dataset.columns.size() < count) {
      input.dataset.columns.push_back(
          {"x" + std::to_string(input.dataset.columns.size()), Column::Kind::text, {}});
      for (Row& row : input.dataset.rows)
        row.cells.push_back(blankCell());
    }
  };
  // An accent that combines makes two scalars and three bytes one character.
  const std::string letter = "e\u0301";
  const struct {
    std::string name;
    std::size_t bound;
    std::function<void(Input&, std::size_t)> set;
    std::string message;
  } limits[] = {
      {"report", 60'000, [&](Input& i, std::size_t n) { i.dataset.report = repeated(letter, n); }, shape},
      {"columns", 12, addColumns, shape},
      {"rows", 500,
       [](Input& i, std::size_t n) {
         Row row = i.row();
         row.cells = {blankCell(), blankCell(), blankCell(), blankCell(), blankCell()};
         i.dataset.rows.resize(n, row);
       },
       shape},
      {"charts", 4, [](Input& i, std::size_t n) { i.dataset.charts.resize(n, i.chart()); }, shape},
      {"label", 120,
       [&](Input& i, std::size_t n) {
         i.dataset.columns[0] = {repeated(letter, n - 4), Column::Kind::text, "m"};
       },
       shape},
      {"sources", 8, [](Input& i, std::size_t n) { i.row().sources.resize(n, "http://h"); }, rowShape},
      {"source IDs", 8, [](Input& i, std::size_t n) { i.row().sourceIDs.emplace(n, "a"); }, rowShape},
      {"source ID", 160, [](Input& i, std::size_t n) { i.row().sourceIDs = {std::string(n, 'a')}; },
       rowShape},
      {"text", 2000, [&](Input& i, std::size_t n) { i.row().cells[0] = textCell(repeated(letter, n)); },
       wrongText},
      {"number", 999'999'999'999'999,
       [](Input& i, std::size_t n) { i.row().cells[2] = numberCell(static_cast<double>(n)); }, wrongNumber},
      {"chart title", 160, [&](Input& i, std::size_t n) { i.chart().title = repeated(letter, n); },
       chartColumns},
      {"series", 4,
       [](Input& i, std::size_t n) {
         i.dataset.columns[0].kind = Column::Kind::number;
         for (Row& row : i.dataset.rows)
           row.cells[0] = numberCell(1);
         i.dataset.columns[0].unit = "USD";
         for (std::size_t c = 0; c < 5; ++c)
           i.dataset.columns[c].kind = Column::Kind::number;
         for (std::size_t r = 0; r < 3; ++r)
           i.dataset.rows[r].cells[1] = numberCell(static_cast<double>(r));
         i.dataset.columns[1].unit = "USD";
         i.dataset.columns.push_back({"Label", Column::Kind::text, {}});
         for (std::size_t r = 0; r < 3; ++r)
           i.dataset.rows[r].cells.push_back(textCell(std::to_string(r)));
         i.chart().categoryColumn = 5;
         i.chart().valueColumns.clear();
         for (std::size_t c = 0; c < n; ++c)
           i.chart().valueColumns.push_back(static_cast<std::int64_t>(c));
       },
       chartColumns},
  };
  for (const auto& limit : limits) {
    Input atBound;
    limit.set(atBound, limit.bound);
    const auto error = errorOf([&] { validate(atBound); });
    EXPECT_FALSE(error) << limit.name << ": " << describe(error);
    Input past;
    limit.set(past, limit.bound + 1);
    const auto refused = errorOf([&] { validate(past); });
    EXPECT_TRUE(refused == DocumentError::validationFailed(limit.message))
        << limit.name << ": " << describe(refused);
  }
}

TEST(ResearchValidation, Accepts) {
  const struct {
    std::string name;
    Spoil change;
  } rows[] = {
      {"no chart when none is asked for",
       [](Input& i) {
         i.requiresChart = false;
         i.dataset.charts.clear();
       }},
      {"same name with another unit",
       [](Input& i) {
         i.dataset.columns[3] = {"A", Column::Kind::number, "EUR"};
         i.dataset.calculations.reset();
         i.chart().valueColumns = {2};
       }},
      {"a column Sources with a unit",
       [](Input& i) {
         i.dataset.columns[0] = {"Sources", Column::Kind::text, ""};
       }},
      {"a leap day", [](Input& i) { i.row().cells[1] = textCell("2024-02-29"); }},
      {"no URL when none is allowed",
       [](Input& i) {
         i.allowedSources.emplace();
         for (Row& row : i.dataset.rows)
           row.sources.clear();
       }},
      {"an empty list of IDs with allowed sources",
       [](Input& i) {
         i.allowedSources = {"https://example.org/2022", "https://example.org/2023",
                             "https://example.org/2024"};
         i.row().sourceIDs.emplace();
       }},
      {"a row without values has no category",
       [](Input& i) {
         i.dataset.rows.push_back(
             {.cells = {blankCell(), blankCell(), blankCell(), numberCell(1), blankCell()},
              .sources = {},
              .sourceIDs = {}});
       }},
      {"one observation in a bar chart",
       [](Input& i) {
         i.chart().kind = Chart::Kind::bar;
         i.dataset.rows.resize(1);
         i.dataset.calculations->resize(1);
       }},
      {"numbers as categories",
       [](Input& i) {
         i.chart().categoryColumn = 2;
         i.chart().valueColumns = {3};
       }},
  };
  for (const auto& row : rows) {
    Input input;
    row.change(input);
    const auto error = errorOf([&] { validate(input); });
    EXPECT_FALSE(error) << row.name << ": " << describe(error);
  }
}

// Both years read as "2024.0".
TEST(ResearchValidation, NumbersAsCategoriesCollideByTheirTexts) {
  Input input;
  input.chart() = {.title = "t", .kind = Chart::Kind::bar, .categoryColumn = 2, .valueColumns = {3}};
  input.dataset.columns[0] = {"Other", Column::Kind::text, {}};
  input.dataset.rows[0].cells[2] = numberCell(2024);
  input.dataset.rows[1].cells[2] = numberCell(2024.0);
  EXPECT_EQ(describe(errorOf([&] { validate(input); })),
            DocumentError::validationFailed(chartCategories).errorDescription());
}

}  // namespace
}  // namespace zelvo
