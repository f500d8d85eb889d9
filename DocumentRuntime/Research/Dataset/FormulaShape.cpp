#include "DocumentRuntime/Research/Dataset/FormulaShape.hpp"

#include <cmath>
#include <cstddef>

#include "DocumentRuntime/Research/Dataset/Rule.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;

/// More operands are a range, or a sum of sums.
constexpr std::size_t maximumArguments = 32;

bool hasCoordinates(const Formula& node) {
  return node.row || node.column || node.endRow || node.endColumn;
}

bool isConstant(const Formula& node) {
  return node.value && std::isfinite(*node.value) &&
         std::fabs(*node.value) < ResearchSpreadsheet::numberBound && !hasCoordinates(node) &&
         node.argumentList().empty();
}

bool isCell(const Formula& node) {
  return node.row && node.column && !node.endRow && !node.endColumn && !node.value &&
         node.argumentList().empty();
}

bool isRange(const Formula& node, std::int64_t rows, std::int64_t columns) {
  return node.row && node.column && node.endRow && node.endColumn && *node.row <= *node.endRow &&
         *node.column <= *node.endColumn && !node.value && node.argumentList().empty() &&
         *node.endRow < rows && *node.endColumn < columns;
}

bool isOperation(const Formula& node) {
  const std::size_t count = node.argumentList().size();
  return !node.value && !hasCoordinates(node) && count >= 1 && count <= maximumArguments;
}

}  // namespace

void checkFormulaShape(const Formula& node, std::int64_t rows, std::int64_t columns) {
  switch (node.op) {
    case Formula::Operation::number:
      return require(isConstant(node), "Invalid formula constant.");
    case Formula::Operation::cell:
      return require(isCell(node), "Invalid cell reference.");
    case Formula::Operation::range:
      return require(isRange(node, rows, columns), "Invalid formula range.");
    default:
      return require(isOperation(node), "Invalid formula arguments.");
  }
}

}  // namespace zelvo
