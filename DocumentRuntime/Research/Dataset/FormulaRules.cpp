#include "DocumentRuntime/Research/Dataset/FormulaRules.hpp"

#include <cmath>
#include <cstddef>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/Rules.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;

/// Formulas with more operands use a range, or a sum of sums.
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

/// The depth below the formula's root. Bounds the recursion for every caller.
constexpr int maximumUnitDepth = 32;

class UnitCollector {
 public:
  explicit UnitCollector(const std::vector<ResearchSpreadsheet::Column>& columns) : columns_(columns) {}

  void collect(const Formula& node, int depth) {
    if (depth > maximumUnitDepth) throw DocumentError::resourceLimit("formula unit dependencies");
    switch (node.op) {
      case Formula::Operation::number:
      case Formula::Operation::count:
        return;
      case Formula::Operation::cell:
      case Formula::Operation::range:
        return collectColumns(node);
      default:
        for (const Formula& argument : node.argumentList())
          collect(argument, depth + 1);
    }
  }

  std::set<std::string_view> take() { return std::move(units_); }

 private:
  void collectColumns(const Formula& node) {
    const auto count = static_cast<std::int64_t>(columns_.size());
    if (!node.column || *node.column < 0 || *node.column >= count)
      throw DocumentError::validationFailed("Invalid unit reference.");
    const std::int64_t last = node.endColumn.value_or(*node.column);
    if (last < *node.column || last >= count) throw DocumentError::validationFailed("Invalid unit range.");
    for (std::int64_t column = *node.column; column <= last; ++column)
      units_.insert(columns_[static_cast<std::size_t>(column)].unitText());
  }

  const std::vector<ResearchSpreadsheet::Column>& columns_;
  std::set<std::string_view> units_;
};

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

std::set<std::string_view> formulaUnits(const Formula& formula,
                                        const std::vector<ResearchSpreadsheet::Column>& columns) {
  UnitCollector collector(columns);
  collector.collect(formula, 0);
  return collector.take();
}

}  // namespace zelvo
