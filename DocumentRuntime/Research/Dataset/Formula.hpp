#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"

namespace zelvo {

/// A formula tree over the cells of a dataset. Rows and columns are zero-based dataset coordinates. Which
/// fields a node may have depends on its operation; the evaluator checks that.
struct Formula {
  enum class Operation {
    number,
    cell,
    range,
    add,
    subtract,
    multiply,
    divide,
    sum,
    average,
    minimum,
    maximum,
    count
  };

  Operation op = Operation::number;
  std::optional<double> value;  ///< the constant of a `number`
  std::optional<std::int64_t> row;
  std::optional<std::int64_t> column;
  std::optional<std::int64_t> endRow;     ///< of a `range`, included
  std::optional<std::int64_t> endColumn;  ///< of a `range`, included
  std::optional<std::vector<Formula>> arguments;

  /// Empty if there are no arguments.
  const std::vector<Formula>& argumentList() const {
    static const std::vector<Formula> none;
    return arguments ? *arguments : none;
  }

  bool operator==(const Formula&) const = default;
};

/// A formula whose result fills one blank cell of a dataset.
struct Calculation {
  std::int64_t row = 0;
  std::int64_t column = 0;
  Formula formula;

  bool operator==(const Calculation&) const = default;
};

/// The result of a calculation.
struct ResolvedCalculation {
  std::int64_t row = 0;
  std::int64_t column = 0;
  std::string formula;          ///< spreadsheet formula text without "=", over the cells of `sheetAddress`
  std::optional<double> value;  ///< the result to be cached; absent for blank

  bool operator==(const ResolvedCalculation&) const = default;
};

/// The address of a dataset's cell on its sheet, whose first row holds the headings.
constexpr CellAddress sheetAddress(std::int64_t row, std::int64_t column) {
  return {.column = column + 1, .row = row + 2};
}

}  // namespace zelvo
