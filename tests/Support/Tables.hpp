#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::testing {

/// A table of that many columns and data rows, every cell the text "r,c".
inline SourceTable tableOf(std::size_t columns, std::size_t rows) {
  SourceTable table{.sourceName = "book.xlsx", .sourceSHA256 = std::string(64, 'a'), .sheetName = "Data"};
  for (std::size_t c = 0; c < columns; ++c)
    table.columns.push_back("Column " + std::to_string(c + 1));
  const auto letter = [](std::size_t c) { return std::string(1, static_cast<char>('A' + c)); };
  table.selectedRange = "A1:" + letter(columns - 1) + std::to_string(rows + 1);
  for (std::size_t r = 0; r < rows; ++r) {
    auto& row = table.rows.emplace_back();
    for (std::size_t c = 0; c < columns; ++c) {
      row.push_back({.address = letter(c) + std::to_string(r + 2),
                     .value = SourceCellValue::text(std::to_string(r + 1) + "," + std::to_string(c + 1))});
    }
  }
  table.warnings = {"Source is the saved file snapshot."};
  return table;
}

/// What needs care: markup in texts, spaces at both ends, a missing cell, a currency, a stored result.
inline SourceTable sampleTable() {
  SourceTable table = tableOf(2, 2);
  table.columns = {"Region <&>", "Revenue \"net\""};
  table.rows[0][0].value = SourceCellValue::text(" Süd's ");
  table.rows[0][1].value = SourceCellValue::number("1234.5");
  table.rows[1][0].value = SourceCellValue::missing();
  table.rows[1][1].value = SourceCellValue::number("-0.5");
  for (auto& row : table.rows)
    row[1].numberFormat = "\"$\"#,##0.00";
  table.rows[1][1].formula = "A1*2";
  table.rows[1][1].usesCachedFormulaValue = true;
  return table;
}

/// A cell in one line: address, kind, stored text, formula, number format, and how a number is shown where
/// that differs.
inline std::string dump(const SourceCell& cell) {
  constexpr const char* kinds[] = {"text", "number", "boolean", "date", "missing", "error"};
  std::string out = cell.address + ' ' + kinds[static_cast<int>(cell.value.kind())];
  if (cell.value.kind() != SourceCellValue::Kind::missing) out += ' ' + cell.value.displayText();
  if (cell.formula) out += " =" + *cell.formula;
  if (cell.usesCachedFormulaValue) out += " cached";
  if (cell.numberFormat) out += " {" + *cell.numberFormat + '}';
  if (cell.displayText() != cell.value.displayText()) out += " = " + cell.displayText();
  if (cell.hidden) out += " hidden";
  return out;
}

/// A table in one line: where it is from, its titles, its rows, its warnings.
inline std::string dump(const SourceTable& table) {
  std::string out = table.sourceName + ' ' + table.sheetName + '!' + table.selectedRange + " [";
  for (const std::string& column : table.columns)
    out += column + '|';
  out.replace(out.size() - 1, 1, "] ");
  for (const auto& row : table.rows) {
    for (const SourceCell& cell : row)
      out += dump(cell) + '|';
    out.replace(out.size() - 1, 1, "; ");
  }
  for (const std::string& warning : table.warnings)
    out += "! " + warning;
  return out;
}

}  // namespace zelvo::testing
