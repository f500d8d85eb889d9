#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "DocumentRuntime/Cells/CellAddress.hpp"

namespace zelvo::Cleaning {

/// The grammar of an attribute's value.
enum class Grammar : std::uint8_t {
  text,         ///< any text; escaped when written
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

/// The cell of a value in canonical form, "B7". Returns nullopt for any other value, including "b7" and
/// "$B$7".
std::optional<CellAddress> plainCellOf(std::string_view value);

/// The area of a value, which may be a single cell. Returns nullopt if it matches neither `cell` nor `area`.
std::optional<CellRange> areaOf(std::string_view value);

bool matches(Grammar grammar, std::string_view value);

}  // namespace zelvo::Cleaning
