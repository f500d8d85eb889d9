// Owns the input rules of tables, titles and charts: limits, order, errors.
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"

namespace zelvo {
namespace {

using namespace testing;

const auto messages = cases<2>(R"(
    bounds | invalidSelection: table, title, or source bounds
    lineage | invalidSelection: cell lineage or bounds
    number | invalidSelection: numeric value or unsupported format
    address | invalidSelection: cell address ; corners | invalidSelection: use one rectangular A1 range
    reverse | invalidSelection: reversed range ; result | formulaValueUnavailable: B2
    columns | invalidSelection: chart needs two different columns and at most 30 rows
    values | invalidSelection: chart categories and numeric values must be present; missing values are not zero
    formats | invalidSelection: chart values have mixed formats or units)");

/// A table with a title, in cells "1,1" and so on.
struct Input {
  std::string text = of(3, 4);

  static std::string of(std::size_t columns, std::size_t rows) {
    SourceTable table = tableOf(columns, rows);
    for (std::string& column : table.columns)
      column.erase(0, std::string("Column ").size());
    table.warnings = {"w"};
    return R"({"title":"Title",)" + toJson(table).substr(1);
  }
};

void check(const Input& input) {
  const JsonDocument document(input.text);
  DocumentInputRules::checkTable(fromJson<SourceTable>(input.text),
                                 document.root().object().required("title").string());
}

TEST(InputRules, RefuseInTheirOrder) {
  expectEditRefusals<Input>([] { return Input(); }, messages, R"(
    "Title"→"" or "Title"→"\u0020\n\u2003\u2028" | bounds | title
    "columns":["1","2","3"],"rows":[→"columns":[],"rows":[[]],"":[ | bounds | rows
    "rows":[→"rows":[],"":[ or ["1","2","3"]→["1","","3"] | bounds | rows
    ,{"address":"C4","value":{"text":{"_0":"3,3"}},"usesCachedFormulaValue":false,"hidden":false}→ | bounds | C4
    book.xlsx→home/book.xlsx or book.xlsx→C:\\book.xlsx | bounds | name
    a","sheetName→F","sheetName or a","sheetName→\n","sheetName | bounds | digest
    "sourceSHA256":"a→"sourceSHA256":"aa | bounds | digest ; "A1:C5"→"A1:B2:C3" | corners | range
    "A1:C5"→"C5:A1" | reverse | range ; "address":"A2"→"address":"1A" | address | A2
    "A1:C5"→"A3:C5" or "A1:C5"→"B1:C5" | lineage | range
    {"text":{"_0":"1,2"}}→{"number":{"_0":"1,5"}} | number | B2
    "1,2"}},→"1,2"}},"formula":"A1", | result | B2/formula ; "address":"A3"→"address":"$B$2" | lineage |
    "address":"C5"→"address":"D5" or "address":"C5"→"address":"C6" | lineage | C5)",
                            check);
}

TEST(InputRules, RefuseOneMoreThanEachLimit) {
  expectEditLimits<Input>(messages, R"(
    "Title"→"#e\u0301#" | 160 | bounds ; "Title"→"x#\u0020#" | 159 | bounds
    ["1","2","3"]→["1","#e\u0301#","3"] | 120 | bounds ; book.xlsx→#e\u0301# | 512 | bounds
    "Data"→"#e\u0301#" | 64 | bounds ; ["w"]→[#"w"#] | 16 | bounds ; ["w"]→["#e\u0301#"] | 500 | bounds
    "1,2"→"#e\u0301#" | 2000 | lineage ; {"text":{"_0":"1,2"}}→{"error":{"_0":"#e\u0301#"}} | 2000 | lineage
    "1,2"}},"usesCachedFormulaValue":false→"1,2"}},"formula":"#e\u0301#","usesCachedFormulaValue":true | 8192 | lineage
    "1,2"}},→"1,2"}},"numberFormat":"#e\u0301#", | 256 | lineage
    {"text":{"_0":"1,2"}}→{"number":{"_0":"#1#"}} | 64 | number)",
                          check);
  expectLimits<Input>(
      {{"columns", 8, refusalIn(messages, "bounds"), [](Input& i, auto n) { i.text = Input::of(n, 1); }},
       {"rows", 200, refusalIn(messages, "bounds"), [](Input& i, auto n) { i.text = Input::of(1, n); }}},
      check);
}

TEST(InputRules, AcceptNumbersInSupportedFormats) {
  const auto expect = [](const std::string& numbers, const std::string& formats, const std::string& key) {
    for (const std::string& number : words(numbers)) {
      for (const std::string& format : words(formats)) {
        Input input;
        edit(input.text,
             R"({"text":{"_0":"1,2"}}→{"number":{"_0":")" + number + R"("}},"numberFormat":)" + format);
        EXPECT_EQ(outcomeOf([&] { check(input); }), refusalIn(messages, key)) << number << format;
      }
    }
  };
  expect("1 +.5e-3 1e308", R"(null "General" "@" "0.0%" "YYYY-MM-DD" "hh:mm:ss" "#,##0.00" "\"$\"#,##0.00")",
         "");
  expect("1e309 NaN \\u00201 0x10", "null", "number");
  expect("1", R"("general" "[Red]0" "" "0;-0")", "number");
}

/// A table whose third column holds numbers, with a chart of it.
struct ChartInput {
  std::string text = of(3);

  static std::string of(std::size_t rows) {
    SourceTable table = tableOf(3, rows);
    for (auto& row : table.rows)
      row[2].value = SourceCellValue::number("-1.5e3");
    return R"({"categoryColumn":0,"valueColumn":2,"title":"T",)" + toJson(table).substr(1);
  }
};

void checkChart(const ChartInput& input) {
  DocumentInputRules::checkChart(fromJson<ChartSelection>(input.text), fromJson<SourceTable>(input.text));
}

TEST(ChartRules, RefuseInTheirOrder) {
  expectEditRefusals<ChartInput>([] { return ChartInput(); }, messages, R"(
    "categoryColumn":0→"categoryColumn":-1 or "categoryColumn":0→"categoryColumn":3 | columns | category
    "valueColumn":2→"valueColumn":3 or "valueColumn":2→"valueColumn":0 | columns | value
    ,{"address":"C3","value":{"number":{"_0":"-1.5e3"}},"usesCachedFormulaValue":false,"hidden":false}→ | values | rows/C3
    {"text":{"_0":"1,1"}}→{"missing":{}} | values | rows/A2
    {"number":{"_0":"-1.5e3"}}→{"number":{"_0":"1e400"}} | values | rows/C2
    "-1.5e3"}},→"-1.5e3"}},"numberFormat":"0", | formats | rows/C2
    "rows":[→"rows":[],"":[ | formats | rows)",
                                 checkChart);
}

TEST(ChartRules, RefuseOneMoreThanEachLimit) {
  expectEditLimits<ChartInput>(messages, R"(
    "title":"T"→"title":"#e\u0301#" | 160 | columns ; "1,1"→"#e\u0301#" | 60 | values
    {"text":{"_0":"1,1"}},→{"number":{"_0":"#1#"}},"numberFormat":"0.0", | 58 | values
    "-1.5e3"→"#1#" | 64 | values)",
                               checkChart);
  expectLimits<ChartInput>({{"rows", 30, refusalIn(messages, "columns"),
                             [](ChartInput& i, auto n) { i.text = ChartInput::of(n); }}},
                           checkChart);
}

}  // namespace
}  // namespace zelvo
