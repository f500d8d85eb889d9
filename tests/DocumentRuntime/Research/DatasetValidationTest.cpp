// Owns the rules of datasets and their charts.

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

const auto messages = cases<2>(R"(
    shape      | Supply a report and a bounded table with unique column names.
    row        | Every row must match the columns.
    text       | Use null for missing numbers; units belong in column headings.
    number     | Numeric cells must contain finite JSON numbers.
    returned   | Each researched row needs an exact URL returned by the research tools.
    scope      | Use exact trusted local snapshot IDs or accepted public evidence; local evidence needs no public URL.
    URL        | Invalid source URL.
    reference  | Formula references must address numeric dataset cells.
    no chart   | The requested chart is missing.
    columns    | Chart columns must be valid and share a unit; separate incomparable metrics.
    categories | Chart observations need unique identified periods/categories. )"
                               R"(Conflicting source observations cannot silently become duplicate points.
    values     | A chart needs observed numeric values and category labels. Never turn missing values into zero.)");

/// A dataset, then the arguments of its validation.
struct Input {
  static inline const std::string good = replaced(
      yearlyProfit().encoded(), "]}]}",
      R"(]}],"requiresChart":true,"scoped":false,"listed":false,)"
      R"("list":["https://example.org/2022","https://example.org/2023","https://example.org/2024"]})");
  std::string text = good;
};

void validate(const Input& input) {
  const JsonDocument document(input.text);
  const auto isSet = [&](const char* flag) { return document.root().object().required(flag).boolean(); };
  AllowedSources allowed;
  if (isSet("listed")) decode(document.root().object().required("list"), allowed.emplace());
  std::optional<ResearchSourceScope> scope;
  if (isSet("scoped"))
    scope.emplace(std::vector<std::string>{"a"}, std::map<std::string, std::string>(),
                  std::vector<ResearchSourceScope::Record>());
  fromJson<ResearchSpreadsheet>(input.text).validate(isSet("requiresChart"), allowed, scope);
}

TEST(ResearchValidation, RefusesInTheOrderOfItsChecks) {
  expectEditRefusals<Input>([] { return Input(); }, messages, R"(
      "Report"→"\u0020\n\u2028\t" | shape |
      2024"]}]→2024"]}],"columns":[{"kind":"text","name":"Y"}] or 2024"]}]→2024"]}],"rows":[] | shape | end
      "name":"B"→"name":"a" | shape | B
      "Year"→"" or "Year"→"SOURCES" | shape | year
      10,4,null→10,4,null,null | row | cells
      "rows":[{→"rows":[{"sourceIDs":["a",""], or "rows":[{→"rows":[{"sourceIDs":["a/b"], | row | ids
      "2022-12-31"→"2023-02-29" or "2022-12-31"→"2024-02-29T00:00" | text | date
      "2022-12-31"→2024 | number | date
      10,4,null→"12",4,null | text | cells
      10,4,null→-1e15,4,null or 10,4,null→1e15,4,null | number | cells
      "listed":false→"listed":true 2022"]→2022/"] | returned | sources
      "listed":false→"listed":true "list":[→"list":[],"":[ | returned | sources
      "listed":false→"listed":true "scoped":false→"scoped":true "list":[→"list":[],"":[ | scope | sources
      https://example.org/2022→ftp://h/ or https://example.org/2022→HTTP://h/ | URL | sources
      https://example.org/2022→http:///a or https://example.org/2022→http://user@h/ | URL | sources
      https://example.org/2022→h or https://example.org/2022→ | URL | sources
      "column":2,"op"→"column":0,"op" | reference | formula
      "report":→"charts":[],"report": | no chart | chart
      "Profit"→"" or "categoryColumn":0→"categoryColumn":-1 | columns | chart
      "categoryColumn":0→"categoryColumn":5 or "categoryColumn":0→"categoryColumn":2 | columns | chart
      [2,4]→[] or [2,4]→[2,-1] or [2,4]→[2,5] or [2,4]→[2,9223372036854775807] | columns | chart
      [2,4]→[2,2] or [2,4]→[2,1] | columns | chart
      "C","unit":"USD"→"C" subtract→multiply subtract→multiply subtract→multiply | columns | chart
      "categoryColumn":0,"kind":"line"→"categoryColumn":2,"kind":"bar" [2,4]→[3] 11,4,→10,4, | categories | chart
      ["2022"→["2023\u0020" or ["2022"→[null | categories | label
      [2,4]→[2,3] 11,4,→null,4, 12,4,→null,4, | values | chart)",
                            validate);
}

TEST(ResearchValidation, RefusesOneMoreThanEachLimit) {
  expectEditLimits<Input>(
      messages,
      R"(
      "Report"→"#e\u0301#"                              | 60000 | shape
      "unit":"USD"}],→"unit":"USD"}#,{"kind":"text","name":"%"}#], )"
      R"(4,null],→4,null#,null#], 4,null],→4,null#,null#], 4,null],→4,null#,null#], | 7 | shape
      2024"]}]→2024"]}#,{"cells":[null,null,null,null,null],"sources":[]}#]          | 497 | shape
      [2,4]}→[2,4]}#,{"categoryColumn":0,"kind":"bar","title":"T","valueColumns":[2]}# | 3 | shape
      "Year"→"#e\u0301#","unit":"m"                     | 116   | shape
      ["https://example.org/2022"]→[#"http://h"#]       | 8     | row
      "rows":[{→"rows":[{"sourceIDs":[#"a"#],           | 8     | row
      "rows":[{→"rows":[{"sourceIDs":["#a#"],           | 160   | row
      "2022"→"#e\u0301#"                                | 2000  | text
      "Profit"→"#e\u0301#"                              | 160   | columns)",
      validate);
}

/// Rows and charts are checked one after the other.
TEST(ResearchValidation, AcceptsOrNamesTheFirstRowAndChart) {
  for (const auto& [edits, key] :
       cases<2>(R"(
      "requiresChart":true→"requiresChart":false "report":→"charts":[],"report": =>
      "Year"→"Sources","unit":"" => ; 10,4,null→999999999999999,-999999999999999,null =>
      "listed":false→"listed":true "rows":[{→"rows":[{"sourceIDs":[], =>
      2024"]}]→2024"]},{"cells":[null,null,null,1,null],"sources":[]}] =>
      "listed":false→"listed":true "list":[→"list":[],"":[ "sources":["→"sources":[],"":[" )"
                R"("sources":["→"sources":[],"":[" "sources":["→"sources":[],"":[" =>
      https://example.org/2022→ftp://h/ 11,4,→11,4,4, => URL
      ["2022"→["2023" [2,4]}→[2,4]},{"categoryColumn":9,"kind":"bar","title":"","valueColumns":[]} => categories)")) {
    Input input;
    edit(input.text, edits);
    EXPECT_EQ(outcomeOf([&] { validate(input); }), refusalIn(messages, key)) << edits;
  }
}

}  // namespace
}  // namespace zelvo
