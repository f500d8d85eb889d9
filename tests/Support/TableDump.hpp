#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::testing {

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
  out.back() = ']';
  out += ' ';
  for (const auto& row : table.rows) {
    for (const SourceCell& cell : row)
      out += dump(cell) + '|';
    out.back() = ';';
    out += ' ';
  }
  for (const std::string& warning : table.warnings)
    out += "! " + warning;
  return out;
}

}  // namespace zelvo::testing
