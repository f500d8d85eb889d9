#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

using testing::errorOf;
using testing::Refusal;

const DocumentError bounds = DocumentError::invalidSelection("table, title, or source bounds");
const DocumentError lineage = DocumentError::invalidSelection("cell lineage or bounds");
const DocumentError number = DocumentError::invalidSelection("numeric value or unsupported format");

/// So many user-perceived characters, each of two scalars and three bytes.
std::string characters(std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i)
    text += "e\u0301";
  return text;
}

struct Input {
  SourceTable table = testing::tableOf(3, 4);
  std::string title = "Title";

  SourceCell& cell(std::size_t row, std::size_t column) { return table.rows[row][column]; }
};

void check(const Input& input) {
  DocumentEngine::validateInput(input.table, input.title);
}

TEST(InputRules, RefuseInTheirOrder) {
  const std::vector<Refusal<Input>> rows = {
      {"ragged row", [](Input& input) { input.table.rows[1].pop_back(); }, bounds},
      {"path as source", [](Input& input) { input.table.sourceName = "home/book.xlsx"; }, bounds},
      {"selected range that is none", [](Input& input) { input.table.selectedRange = "A1:B2:C3"; },
       DocumentError::invalidSelection("use one rectangular A1 range"), "range"},
      {"reversed range", [](Input& input) { input.table.selectedRange = "C5:A1"; },
       DocumentError::invalidSelection("reversed range"), "range"},
      // Cell by cell: all rules of an earlier cell come before those of a later one.
      {"address that is none", [](Input& input) { input.cell(0, 0).address = "1A"; },
       DocumentError::invalidSelection("cell address"), "A"},
      {"cell above the range", [](Input& input) { input.table.selectedRange = "A3:C5"; }, lineage, "range"},
      {"long text", [](Input& input) { input.cell(0, 1).value = SourceCellValue::text(characters(2001)); },
       lineage, "B/value"},
      {"number that is none", [](Input& input) { input.cell(0, 1).value = SourceCellValue::number("1,5"); },
       number, "B/value"},
      {"formula without stored result", [](Input& input) { input.cell(0, 1).formula = "A1"; },
       DocumentError::formulaValueUnavailable("B2"), "B/formula"},
      {"cell seen before", [](Input& input) { input.cell(1, 0).address = "$B$2"; }, lineage},
      {"cell right of the range", [](Input& input) { input.cell(3, 2).address = "D5"; }, lineage},
  };
  testing::expectRefusals<Input>([] { return Input(); }, rows, check);
}

/// A limit: how to make an input that reaches `size`, the last size that passes, and what one more gives.
struct Limit {
  std::string name;
  std::function<void(Input&, std::size_t size)> reach;
  std::size_t last;
  DocumentError beyond;
};

TEST(InputRules, HoldAtEveryLimitAndNoFurther) {
  const std::vector<Limit> limits = {
      {"title", [](Input& input, std::size_t size) { input.title = characters(size); }, 160, bounds},
      {"title with the spaces around it",
       [](Input& input, std::size_t size) { input.title = "x" + std::string(size - 1, ' '); }, 160, bounds},
      {"columns", [](Input& input, std::size_t size) { input.table = testing::tableOf(size, 1); }, 8, bounds},
      {"rows", [](Input& input, std::size_t size) { input.table = testing::tableOf(1, size); }, 200, bounds},
      {"column title", [](Input& input, std::size_t size) { input.table.columns[2] = characters(size); }, 120,
       bounds},
      {"source name", [](Input& input, std::size_t size) { input.table.sourceName = characters(size); }, 512,
       bounds},
      {"sheet name", [](Input& input, std::size_t size) { input.table.sheetName = characters(size); }, 64,
       bounds},
      {"warnings", [](Input& input, std::size_t size) { input.table.warnings.assign(size, "w"); }, 16,
       bounds},
      {"warning",
       [](Input& input, std::size_t size) {
         input.table.warnings = {"", characters(size)};
       },
       500, bounds},
      {"text",
       [](Input& input, std::size_t size) {
         input.cell(3, 2).value = SourceCellValue::text(characters(size));
       },
       2000, lineage},
      {"error",
       [](Input& input, std::size_t size) {
         input.cell(3, 2).value = SourceCellValue::error(characters(size));
       },
       2000, lineage},
      {"formula",
       [](Input& input, std::size_t size) {
         input.cell(3, 2).formula = characters(size);
         input.cell(3, 2).usesCachedFormulaValue = true;
       },
       8192, lineage},
      {"number format",
       [](Input& input, std::size_t size) { input.cell(3, 2).numberFormat = characters(size); }, 256,
       lineage},
      {"number",
       [](Input& input, std::size_t size) {
         input.cell(3, 2).value = SourceCellValue::number(std::string(size, '1'));
       },
       64, number},
      {"last column of the range",
       [](Input& input, std::size_t size) {
         input.cell(3, 2).address = std::string(1, char('A' + size)) + "1";
       },
       2, lineage},
      {"last row of the range",
       [](Input& input, std::size_t size) { input.cell(3, 2).address = "C" + std::to_string(size); }, 5,
       lineage},
  };
  for (const Limit& limit : limits) {
    Input reaching;
    limit.reach(reaching, limit.last);
    const auto none = errorOf([&] { check(reaching); });
    EXPECT_FALSE(none) << limit.name << ": " << testing::describe(none);
    Input beyond;
    limit.reach(beyond, limit.last + 1);
    const auto error = errorOf([&] { check(beyond); });
    EXPECT_TRUE(error == limit.beyond) << limit.name << ": " << testing::describe(error);
  }
}

TEST(InputRules, RefuseWhatIsEmptyOrMisspelt) {
  const std::vector<Refusal<Input>> rows = {
      {"no title", [](Input& input) { input.title = ""; }, bounds},
      {"blank title", [](Input& input) { input.title = " \n\u2003\u2028"; }, bounds},
      {"no columns",
       [](Input& input) {
         input.table.columns.clear();
         input.table.rows = {{}};
       },
       bounds},
      {"no rows", [](Input& input) { input.table.rows.clear(); }, bounds},
      {"empty column title", [](Input& input) { input.table.columns[1] = ""; }, bounds},
      {"row with a cell more", [](Input& input) { input.table.rows[3].push_back({.address = "D5"}); },
       bounds},
      {"path of another system", [](Input& input) { input.table.sourceName = "C:\\book.xlsx"; }, bounds},
      {"digest in upper case", [](Input& input) { input.table.sourceSHA256.back() = 'F'; }, bounds},
      {"digest of another letter", [](Input& input) { input.table.sourceSHA256.front() = 'g'; }, bounds},
      {"short digest", [](Input& input) { input.table.sourceSHA256.pop_back(); }, bounds},
      {"digest and a line break", [](Input& input) { input.table.sourceSHA256 += '\n'; }, bounds},
  };
  for (const auto& row : rows) {
    Input input;
    row.spoil(input);
    EXPECT_TRUE(errorOf([&] { check(input); }) == row.expected) << row.name;
  }
}

TEST(InputRules, TakeNumbersInFormatsThatCanBeShown) {
  const struct {
    std::string number;
    std::optional<std::string> format;
    bool passes;
  } rows[] = {
      {"1", {}, true},           {"+.5e-3", {}, true},         {"1e308", {}, true},    {"1e309", {}, false},
      {"", {}, false},           {"NaN", {}, false},           {" 1", {}, false},      {"0x10", {}, false},
      {"1", "General", true},    {"1", "general", false},      {"1", "@", true},       {"1", "0.0%", true},
      {"1", "YYYY-MM-DD", true}, {"1", "hh:mm:ss", true},      {"1", "[Red]0", false}, {"1", "", false},
      {"1", "#,##0.00", true},   {"1", "\"$\"#,##0.00", true}, {"1", "0;-0", false},
  };
  for (const auto& row : rows) {
    Input input;
    input.cell(0, 0).value = SourceCellValue::number(row.number);
    input.cell(0, 0).numberFormat = row.format;
    const auto error = errorOf([&] { check(input); });
    EXPECT_EQ(error, row.passes ? std::nullopt : std::optional(number))
        << row.number << " " << row.format.value_or("-");
  }
  Input text;  // the formats of other kinds are nobody's business
  text.cell(0, 0).numberFormat = "[Red]0";
  EXPECT_FALSE(errorOf([&] { check(text); }));
}

struct ChartInput {
  SourceTable table = testing::tableOf(3, 3);
  ChartSelection chart = {.categoryColumn = 0, .valueColumn = 2, .title = ""};

  ChartInput() { putValues(); }
  void putValues() {
    for (auto& row : table.rows)
      row[2].value = SourceCellValue::number("-1.5e3");
  }
};

void checkChart(const ChartInput& input) {
  DocumentEngine::validateChart(input.chart, input.table);
}

TEST(ChartRules, RefuseInTheirOrder) {
  const auto columns =
      DocumentError::invalidSelection("chart needs two different columns and at most 30 rows");
  const auto values = DocumentError::invalidSelection(
      "chart categories and numeric values must be present; missing values are not zero");
  const auto formats = DocumentError::invalidSelection("chart values have mixed formats or units");
  const std::vector<Refusal<ChartInput>> rows = {
      {"category left of all", [](ChartInput& input) { input.chart.categoryColumn = -1; }, columns},
      {"value right of all", [](ChartInput& input) { input.chart.valueColumn = 3; }, columns, "value"},
      {"one column twice", [](ChartInput& input) { input.chart.valueColumn = 0; }, columns, "value"},
      {"column beyond any size", [](ChartInput& input) { input.chart.valueColumn = INT64_MAX; }, columns,
       "value"},
      {"31 rows",
       [](ChartInput& input) {
         input.table = testing::tableOf(3, 31);
         input.putValues();
       },
       columns, "rows"},
      {"title", [](ChartInput& input) { input.chart.title = characters(161); }, columns},
      {"ragged row", [](ChartInput& input) { input.table.rows[1].pop_back(); }, values, "rows/1"},
      {"missing category",
       [](ChartInput& input) { input.table.rows[0][0].value = SourceCellValue::missing(); }, values,
       "rows/0/0"},
      {"long category",
       [](ChartInput& input) { input.table.rows[0][0].value = SourceCellValue::text(characters(61)); },
       values, "rows/0/0"},
      {"text as value", [](ChartInput& input) { input.table.rows[2][2].value = SourceCellValue::text("1"); },
       values, "rows/2/2"},
      {"missing value", [](ChartInput& input) { input.table.rows[2][2].value = SourceCellValue::missing(); },
       values, "rows/2/2"},
      {"infinite value",
       [](ChartInput& input) { input.table.rows[2][2].value = SourceCellValue::number("1e400"); }, values,
       "rows/2/2"},
      {"number of 65 characters",
       [](ChartInput& input) {
         input.table.rows[2][2].value = SourceCellValue::number(std::string(65, '1'));
       },
       values, "rows/2/2"},
      {"two formats", [](ChartInput& input) { input.table.rows[2][2].numberFormat = "0"; }, formats,
       "rows/2/format"},
      {"no rows", [](ChartInput& input) { input.table.rows.clear(); }, formats, "rows"},
  };
  testing::expectRefusals<ChartInput>([] { return ChartInput(); }, rows, checkChart);
}

TEST(ChartRules, HoldAtEveryLimit) {
  ChartInput input;
  input.table = testing::tableOf(3, 30);
  input.putValues();
  input.chart.title = characters(160);
  input.table.rows[29][0].value = SourceCellValue::text(characters(60));
  input.table.rows[29][2].value = SourceCellValue::number(std::string(64, '1'));
  input.table.rows[29][2].numberFormat = "General";  // as if it had none
  EXPECT_FALSE(errorOf([&] { checkChart(input); }));

  // A category counts as it is shown: 59 digits are shown as 61 characters.
  ChartInput shown;
  shown.table.rows[0][0].value = SourceCellValue::number(std::string(59, '1'));
  EXPECT_FALSE(errorOf([&] { checkChart(shown); }));
  shown.table.rows[0][0].numberFormat = "0.0";
  EXPECT_TRUE(errorOf([&] { checkChart(shown); }));
}

}  // namespace
}  // namespace zelvo
