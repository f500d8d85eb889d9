// Owns the input rules of tables, titles and charts: limits, order, errors.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo {
namespace {

using testing::characters;
using testing::outcomeOf;
using testing::tableOf;
using Value = SourceCellValue;

const DocumentError bounds = DocumentError::invalidSelection("table, title, or source bounds");
const DocumentError lineage = DocumentError::invalidSelection("cell lineage or bounds");
const DocumentError number = DocumentError::invalidSelection("numeric value or unsupported format");

struct Input {
  SourceTable table = tableOf(3, 4);
  std::string title = "Title";

  SourceCell& cell(std::size_t row, std::size_t column) { return table.rows[row][column]; }
  SourceCell& last() { return table.rows.back().back(); }
};
using I = Input&;

void check(const Input& input) {
  DocumentInputRules::checkTable(input.table, input.title);
}

TEST(InputRules, RefuseInTheirOrder) {
  const std::vector<testing::Refusal<Input>> rows = {
      {"ragged row", [](I i) { i.table.rows[1].pop_back(); }, bounds},
      {"path as source", [](I i) { i.table.sourceName = "home/book.xlsx"; }, bounds},
      {"selected range that is none", [](I i) { i.table.selectedRange = "A1:B2:C3"; },
       "invalidSelection: use one rectangular A1 range", "range"},
      {"range", [](I i) { i.table.selectedRange = "C5:A1"; }, "invalidSelection: reversed range", "range"},
      // Cell by cell: all rules of an earlier cell come before those of a later one.
      {"no address", [](I i) { i.cell(0, 0).address = "1A"; }, "invalidSelection: cell address", "A"},
      {"cell above the range", [](I i) { i.table.selectedRange = "A3:C5"; }, lineage, "range"},
      {"long text", [](I i) { i.cell(0, 1).value = Value::text(characters(2001)); }, lineage, "B/value"},
      {"no number", [](I i) { i.cell(0, 1).value = Value::number("1,5"); }, number, "B/value"},
      {"no result", [](I i) { i.cell(0, 1).formula = "A1"; }, "formulaValueUnavailable: B2", "B/formula"},
      {"cell seen before", [](I i) { i.cell(1, 0).address = "$B$2"; }, lineage},
      {"cell right of the range", [](I i) { i.last().address = "D5"; }, lineage},
  };
  testing::expectRefusals<Input>([] { return Input(); }, rows, check);
}

void setFormula(I input, std::size_t size) {
  input.last().formula = characters(size);
  input.last().usesCachedFormulaValue = true;
}

TEST(InputRules, HoldAtEveryLimitAndNoFurther) {
  using Size = std::size_t;
  const std::vector<testing::Limit<Input>> limits = {
      {"title", 160, bounds, [](I i, Size size) { i.title = characters(size); }},
      {"title and spaces", 160, bounds, [](I i, Size size) { i.title = "x" + std::string(size - 1, ' '); }},
      {"columns", 8, bounds, [](I i, Size size) { i.table = tableOf(size, 1); }},
      {"rows", 200, bounds, [](I i, Size size) { i.table = tableOf(1, size); }},
      {"column title", 120, bounds, [](I i, Size size) { i.table.columns[2] = characters(size); }},
      {"source name", 512, bounds, [](I i, Size size) { i.table.sourceName = characters(size); }},
      {"sheet name", 64, bounds, [](I i, Size size) { i.table.sheetName = characters(size); }},
      {"warnings", 16, bounds, [](I i, Size size) { i.table.warnings.assign(size, "w"); }},
      {"warning", 500, bounds, [](I i, Size size) { i.table.warnings.push_back(characters(size)); }},
      {"text", 2000, lineage, [](I i, Size size) { i.last().value = Value::text(characters(size)); }},
      {"error", 2000, lineage, [](I i, Size size) { i.last().value = Value::error(characters(size)); }},
      {"formula", 8192, lineage, setFormula},
      {"number format", 256, lineage, [](I i, Size size) { i.last().numberFormat = characters(size); }},
      {"number", 64, number, [](I i, Size size) { i.last().value = Value::number(std::string(size, '1')); }},
      {"last column", 2, lineage,
       [](I i, Size c) { i.last().address = std::string("ABCD").substr(c, 1) + "1"; }},
      {"last row", 5, lineage, [](I i, Size row) { i.last().address = "C" + std::to_string(row); }},
  };
  testing::expectLimits(limits, check);
}

TEST(InputRules, RefuseWhatIsEmptyOrMisspelt) {
  const std::vector<std::pair<std::string, void (*)(I)>> rows = {
      {"no title", [](I i) { i.title = ""; }},
      {"blank title", [](I i) { i.title = " \n\u2003\u2028"; }},
      {"no columns", [](I i) { i.table.columns.clear(), i.table.rows.assign(1, {}); }},
      {"no rows", [](I i) { i.table.rows.clear(); }},
      {"empty column title", [](I i) { i.table.columns[1] = ""; }},
      {"row with a cell more", [](I i) { i.table.rows[3].push_back({.address = "D5"}); }},
      {"path of another system", [](I i) { i.table.sourceName = "C:\\book.xlsx"; }},
      {"digest in upper case", [](I i) { i.table.sourceSHA256.back() = 'F'; }},
      {"digest of another letter", [](I i) { i.table.sourceSHA256.front() = 'g'; }},
      {"short digest", [](I i) { i.table.sourceSHA256.pop_back(); }},
      {"digest and a line break", [](I i) { i.table.sourceSHA256 += '\n'; }},
  };
  for (const auto& [name, spoil] : rows) {
    Input input;
    spoil(input);
    EXPECT_EQ(outcomeOf([&] { check(input); }), bounds) << name;
  }
}

TEST(InputRules, AcceptNumbersInSupportedFormats) {
  const auto outcome = [](const Value& value, const std::optional<std::string>& format) {
    Input input;
    input.cell(0, 0).value = value;
    input.cell(0, 0).numberFormat = format;
    return outcomeOf([&] { check(input); });
  };
  for (const char* text : {"1", "+.5e-3", "1e308"})
    EXPECT_EQ(outcome(Value::number(text), {}), "") << text;
  for (const char* text : {"1e309", "", "NaN", " 1", "0x10"})
    EXPECT_EQ(outcome(Value::number(text), {}), number) << text;
  for (const std::string& format :
       testing::words(R"(General @ 0.0% YYYY-MM-DD hh:mm:ss #,##0.00 "$"#,##0.00)"))
    EXPECT_EQ(outcome(Value::number("1"), format), "") << format;
  for (const char* format : {"general", "[Red]0", "", "0;-0"}) {
    EXPECT_EQ(outcome(Value::number("1"), format), number) << format;
    EXPECT_EQ(outcome(Value::text("1"), format), "") << format;
  }
}

struct ChartInput {
  SourceTable table;
  ChartSelection chart = {.categoryColumn = 0, .valueColumn = 2, .title = ""};

  ChartInput() { setRows(3); }
  void setRows(std::size_t count) {
    table = tableOf(3, count);
    for (auto& row : table.rows)
      row[2].value = Value::number("-1.5e3");
  }
  SourceCell& category() { return table.rows.front()[0]; }
  SourceCell& value() { return table.rows.back()[2]; }
};

void checkChart(const ChartInput& input) {
  DocumentInputRules::checkChart(input.chart, input.table);
}

TEST(ChartRules, RefuseInTheirOrder) {
  using C = ChartInput&;
  const auto columns =
      DocumentError::invalidSelection("chart needs two different columns and at most 30 rows");
  const auto values = DocumentError::invalidSelection(
      "chart categories and numeric values must be present; missing values are not zero");
  const auto formats = DocumentError::invalidSelection("chart values have mixed formats or units");
  const std::vector<testing::Refusal<ChartInput>> rows = {
      {"category left of all", [](C c) { c.chart.categoryColumn = -1; }, columns},
      {"value right of all", [](C c) { c.chart.valueColumn = 3; }, columns, "value"},
      {"one column twice", [](C c) { c.chart.valueColumn = 0; }, columns, "value"},
      {"column beyond any size", [](C c) { c.chart.valueColumn = INT64_MAX; }, columns, "value"},
      {"31 rows", [](C c) { c.setRows(31); }, columns, "rows"},
      {"title", [](C c) { c.chart.title = characters(161); }, columns},
      {"ragged row", [](C c) { c.table.rows[1].pop_back(); }, values, "rows/1"},
      {"missing category", [](C c) { c.category().value = Value::missing(); }, values, "rows/0/0"},
      {"long category", [](C c) { c.category().value = Value::text(characters(61)); }, values, "rows/0/0"},
      {"text as value", [](C c) { c.value().value = Value::text("1"); }, values, "rows/2/2"},
      {"missing value", [](C c) { c.value().value = Value::missing(); }, values, "rows/2/2"},
      {"infinity", [](C c) { c.value().value = Value::number("1e400"); }, values, "rows/2/2"},
      {"65 digits", [](C c) { c.value().value = Value::number(std::string(65, '1')); }, values, "rows/2/2"},
      {"two formats", [](C c) { c.value().numberFormat = "0"; }, formats, "rows/2/format"},
      {"no rows", [](C c) { c.table.rows.clear(); }, formats, "rows"},
  };
  testing::expectRefusals<ChartInput>([] { return ChartInput(); }, rows, checkChart);
}

TEST(ChartRules, HoldAtEveryLimit) {
  ChartInput input;
  input.setRows(30);
  input.chart.title = characters(160);
  input.category().value = Value::text(characters(60));
  input.value().value = Value::number(std::string(64, '1'));
  input.value().numberFormat = "General";  // as if it had none
  EXPECT_EQ(outcomeOf([&] { checkChart(input); }), "");

  // A category counts as it is shown: 59 digits are shown as 61 characters.
  ChartInput shown;
  shown.category().value = Value::number(std::string(59, '1'));
  EXPECT_EQ(outcomeOf([&] { checkChart(shown); }), "");
  shown.category().numberFormat = "0.0";
  EXPECT_NE(outcomeOf([&] { checkChart(shown); }), "");
}

}  // namespace
}  // namespace zelvo
