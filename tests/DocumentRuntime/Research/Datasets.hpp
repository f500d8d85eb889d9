#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "Support/Texts.hpp"

/// Short builders of datasets and formulas.
namespace zelvo::testing {

using Cell = ResearchSpreadsheet::Cell;
using Column = ResearchSpreadsheet::Column;
using Row = ResearchSpreadsheet::Row;
using Chart = ResearchSpreadsheet::Chart;
using Operation = Formula::Operation;

inline Cell textCell(std::string value) {
  return Cell(std::move(value));
}
inline Cell numberCell(double value) {
  return Cell(value);
}
inline Cell blankCell() {
  return {};
}

inline Formula constant(double value) {
  Formula formula;
  formula.op = Operation::number;
  formula.value = value;
  return formula;
}

inline Formula cellAt(std::int64_t row, std::int64_t column) {
  Formula formula;
  formula.op = Operation::cell;
  formula.row = row;
  formula.column = column;
  return formula;
}

inline Formula rangeOf(std::int64_t row, std::int64_t column, std::int64_t endRow, std::int64_t endColumn) {
  Formula formula = cellAt(row, column);
  formula.op = Operation::range;
  formula.endRow = endRow;
  formula.endColumn = endColumn;
  return formula;
}

inline Formula apply(Operation operation, std::vector<Formula> arguments) {
  Formula formula;
  formula.op = operation;
  formula.arguments = std::move(arguments);
  return formula;
}

/// A row of these numbers, blank for nullopt.
inline Row numberRow(const std::vector<std::optional<double>>& values) {
  Row row;
  for (const auto& value : values)
    row.cells.push_back(value ? numberCell(*value) : blankCell());
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
  dataset.calculations.emplace();
  return dataset;
}

/// Three years of revenue and cost, their difference calculated, and a line chart of revenue and difference.
inline ResearchSpreadsheet yearlyProfit() {
  ResearchSpreadsheet dataset = numericTable({"USD", "USD", "USD"});
  dataset.columns.insert(dataset.columns.begin(),
                         {{.name = "Year", .kind = Column::Kind::text, .unit = {}},
                          {.name = "Closed", .kind = Column::Kind::date, .unit = {}}});
  for (int i = 0; i < 3; ++i) {
    const std::string year = std::to_string(2022 + i);
    dataset.rows.push_back(
        {.cells = {textCell(year), textCell(year + "-12-31"), numberCell(10 + i), numberCell(4), blankCell()},
         .sources = {"https://example.org/" + year},
         .sourceIDs = {}});
    dataset.calculations->push_back(
        {.row = i, .column = 4, .formula = apply(Operation::subtract, {cellAt(i, 2), cellAt(i, 3)})});
  }
  dataset.charts.push_back(
      {.title = "Profit", .kind = Chart::Kind::line, .categoryColumn = 0, .valueColumns = {2, 4}});
  return dataset;
}

}  // namespace zelvo::testing
