#pragma once

#include <optional>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "Support/TextEdits.hpp"

/// Short builders of datasets and formulas.
namespace zelvo::testing {

using Cell = ResearchSpreadsheet::Cell;
using Column = ResearchSpreadsheet::Column;
using Row = ResearchSpreadsheet::Row;
using Chart = ResearchSpreadsheet::Chart;

/// Calculations "row,column=formula", separated by spaces. In a formula, "#1" is a constant, "[0,1]" the cell
/// of that row and column, "[0,1,2,3]" a range, "sum(#1,#2)" an operation. JSON is taken as it is, and as
/// more members of the node before it: "#1{"row":0}".
inline std::vector<Calculation> calculations(std::string text) {
  for (const auto& [pattern, json] :
       {std::pair(R"(\[(-?\d+),(-?\d+)\])", R"({"op":"cell","row":$1,"column":$2})"),
        {R"(\[(-?\d+),(-?\d+),(-?\d+),(-?\d+)\])",
         R"({"op":"range","row":$1,"column":$2,"endRow":$3,"endColumn":$4})"},
        {R"(#([-+.e\d]+))", R"({"op":"number","value":$1})"},
        {R"(([a-z]+)\()", R"({"op":"$1","arguments":[)"},
        {R"(\))", "]}"},
        {R"(\}\{)", ","},
        {R"((-?\d+),(-?\d+)=)", R"({"row":$1,"column":$2,"formula":)"},
        {" ", "},"}})
    text = std::regex_replace(text, std::regex(pattern), json);
  return fromJson<std::vector<Calculation>>("[" + text + "}]");
}

/// The decoding error of a call, as "path: message"; empty if there is none.
template <typename Act>
std::string decodingErrorOf(const Act& act) {
  try {
    act();
  } catch (const DecodingError& error) {
    return error.path() + ": " + error.message();
  }
  return {};
}

/// The errors of decoding a JSON text whose entry (see `filled`) is there so many times, and once more.
template <typename Decode>
std::string errorsAtBound(const std::string& json, const std::string& last, const Decode& decode) {
  const auto errorAt = [&](std::size_t count) {
    return decodingErrorOf([&] { decode(filled(json, count)); });
  };
  return errorAt(std::stoul(last)) + errorAt(std::stoul(last) + 1);
}

/// A row of these numbers, blank for nullopt.
inline Row numberRow(const std::vector<std::optional<double>>& values) {
  Row row;
  for (const auto& value : values)
    row.cells.push_back(value ? Cell(*value) : Cell());
  return row;
}

/// Numeric columns "A", "B", … with these units, without rows.
inline ResearchSpreadsheet numericTable(const std::vector<std::optional<std::string>>& units) {
  ResearchSpreadsheet dataset;
  dataset.report = "Report";
  for (const auto& unit : units) {
    const auto letter = static_cast<char>('A' + dataset.columns.size());
    dataset.columns.push_back({.name = std::string(1, letter), .kind = Column::Kind::number, .unit = unit});
  }
  return dataset;
}

/// Three years of revenue and cost, their difference calculated, and a line chart of revenue and difference.
inline ResearchSpreadsheet yearlyProfit() {
  static const ResearchSpreadsheet profit = [] {
    ResearchSpreadsheet dataset = numericTable({"USD", "USD", "USD"});
    dataset.columns.insert(dataset.columns.begin(),
                           {{"Year", Column::Kind::text, {}}, {"Closed", Column::Kind::date, {}}});
    for (int i = 0; i < 3; ++i) {
      const std::string year = std::to_string(2022 + i);
      dataset.rows.push_back({{Cell(year), Cell(year + "-12-31"), Cell(10 + i), Cell(4), Cell()},
                              {"https://example.org/" + year},
                              {}});
    }
    dataset.calculations =
        calculations("0,4=subtract([0,2],[0,3]) 1,4=subtract([1,2],[1,3]) 2,4=subtract([2,2],[2,3])");
    dataset.charts.push_back({"Profit", Chart::Kind::line, 0, {2, 4}});
    return dataset;
  }();
  return profit;
}

}  // namespace zelvo::testing
