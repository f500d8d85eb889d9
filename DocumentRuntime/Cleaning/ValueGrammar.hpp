#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "DocumentRuntime/Cells/CellAddress.hpp"

namespace zelvo::Cleaning {

/// What the value of an attribute may be.
enum class Grammar : std::uint8_t {
  text,         ///< any; escaped when written
  flag,         ///< "0", "1", "false", "true"
  measure,      ///< a number that is not negative
  integer,      ///< ASCII digits with an optional "-", within 64 bits
  index,        ///< an integer that is not negative
  rowNumber,    ///< an integer from 1 to the last row of a sheet
  cell,         ///< "B7", "b7" or "$B$7", within a sheet
  area,         ///< a cell, or two around a colon, the second neither above nor left of the first
  cellType,     ///< of a cell's value; empty is a number
  formulaType,  ///< "normal", "array", "dataTable", "shared"
  sheetState,
  calculationMode,
  patternType,  ///< of the two fills that every workbook has
  preserve,
};

/// The cell that a value names in the form in which cells are written, "B7"; none for any other value, be it
/// the same cell in another form.
std::optional<CellAddress> plainCellOf(std::string_view value);

/// The area that a value names, a single cell included; none if it matches neither `cell` nor `area`.
std::optional<CellRange> areaOf(std::string_view value);

bool matches(Grammar grammar, std::string_view value);

}  // namespace zelvo::Cleaning
