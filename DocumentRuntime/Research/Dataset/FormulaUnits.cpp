#include "DocumentRuntime/Research/Dataset/FormulaUnits.hpp"

#include <cstdint>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

/// Below the formula's root. It bounds this recursion, whoever calls it.
constexpr int maximumDepth = 32;

class UnitCollector {
 public:
  explicit UnitCollector(const std::vector<ResearchSpreadsheet::Column>& columns) : columns_(columns) {}

  void collect(const Formula& node, int depth) {
    if (depth > maximumDepth) throw DocumentError::resourceLimit("formula unit dependencies");
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

std::set<std::string_view> formulaUnits(const Formula& formula,
                                        const std::vector<ResearchSpreadsheet::Column>& columns) {
  UnitCollector collector(columns);
  collector.collect(formula, 0);
  return collector.take();
}

}  // namespace zelvo
