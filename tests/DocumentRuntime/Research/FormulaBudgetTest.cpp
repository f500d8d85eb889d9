// Owns the budgets of formulas.

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;
using enum Formula::Operation;

constexpr std::int64_t tallRows = 500;

/// 500 rows of twelve blank numeric cells.
ResearchSpreadsheet tallTable() {
  ResearchSpreadsheet dataset = numericTable(std::vector<std::optional<std::string>>(12));
  dataset.rows.resize(tallRows, numberRow(std::vector<std::optional<double>>(12)));
  return dataset;
}

/// Puts the formula into the cells of the last columns, which nothing else uses.
void addCalculations(ResearchSpreadsheet& dataset, std::size_t count, const Formula& formula) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto place = static_cast<std::int64_t>(dataset.calculations->size());
    dataset.calculations->push_back(
        {.row = place % tallRows, .column = 11 - place / tallRows, .formula = formula});
  }
}

Formula nested(Formula innermost, int levels) {
  for (int i = 0; i < levels; ++i)
    innermost = apply(count, {innermost});
  return innermost;
}

Outcome outcome(const ResearchSpreadsheet& dataset) {
  return outcomeOf([&] { ResearchFormulaEvaluator::resolve(dataset); });
}

/// A tall table with so many calculations.
ResearchSpreadsheet tableOf(std::size_t count, const Formula& formula) {
  ResearchSpreadsheet dataset = tallTable();
  addCalculations(dataset, count, formula);
  return dataset;
}

TEST(FormulaBudget, HoldsAtEachBound) {
  constexpr double widest = -1.2345678901234567e-300;  // 24 characters
  const auto ones = [](std::size_t count) { return std::vector<Formula>(count, constant(1)); };
  const auto nodes = [&](ResearchSpreadsheet& dataset, std::size_t innermost) {
    std::vector<Formula> arguments = ones(31);
    arguments.push_back(apply(count, ones(17)));
    dataset = tableOf(999, apply(count, arguments));  // of 50 nodes each
    arguments.back() = apply(count, ones(innermost - 33));
    addCalculations(dataset, 1, apply(count, arguments));
  };
  const auto text = [&](ResearchSpreadsheet& dataset, std::size_t bytes) {
    std::vector<Formula> arguments(10, apply(count, std::vector<Formula>(32, constant(widest))));
    arguments.resize(14, constant(widest));
    arguments.push_back(constant(bytes == 8192 ? 123456789012.25 : 123456789012.125));
    dataset = tableOf(1, apply(count, arguments));
  };
  const auto reads = [](ResearchSpreadsheet& dataset, std::size_t formulas) {
    dataset = tableOf(40, apply(count, {rangeOf(0, 0, tallRows - 1, 9)}));
    addCalculations(dataset, formulas - 40, cellAt(-1, -1));
  };
  // A dependency that is met at depth 32 must have been resolved before; its own formula begins at depth 1.
  const auto dependency = [](ResearchSpreadsheet& dataset, std::size_t levels) {
    dataset = tallTable();
    dataset.calculations = {{0, 0, nested(cellAt(1, 0), static_cast<int>(levels))},
                            {1, 0, nested(constant(1), 31)}};
  };
  const std::string circular = "validationFailed: Circular or deeply nested formula dependencies.";
  expectLimits<ResearchSpreadsheet>(
      {{"calculations", 1000, "resourceLimit: calculation count",
        [](auto& dataset, std::size_t n) { dataset = tableOf(n, constant(1)); }},
       {"depth", 31, "resourceLimit: formula expression",
        [](auto& dataset, std::size_t n) { dataset = tableOf(1, nested(constant(1), static_cast<int>(n))); }},
       {"nodes", 50, "resourceLimit: formula expression", nodes},
       {"cell reads", 40, "resourceLimit: formula cell dependencies", reads},
       {"text", 8192, "resourceLimit: formula text or numeric result", text},
       {"depth of a dependency", 30, circular, dependency}},
      ResearchFormulaEvaluator::resolve);
  ResearchSpreadsheet resolvedBefore;
  dependency(resolvedBefore, 31);
  std::swap(resolvedBefore.calculations->front(), resolvedBefore.calculations->back());
  EXPECT_EQ(outcome(resolvedBefore), "");
}

/// A dataset of 1000 calculations, each one more than the next, and 7 at the end.
ResearchSpreadsheet chain(bool isForward) {
  ResearchSpreadsheet dataset = tallTable();
  const auto placeOf = [](std::int64_t i) { return std::pair(i % tallRows, i / tallRows); };
  for (std::int64_t i = 0; i < 1000; ++i) {
    const auto [row, column] = placeOf(i);
    const auto [nextRow, nextColumn] = placeOf(i + 1);
    dataset.calculations->push_back({row, column, apply(add, {constant(1), cellAt(nextRow, nextColumn)})});
  }
  dataset.rows[0].cells[2] = numberCell(7);
  if (!isForward) std::reverse(dataset.calculations->begin(), dataset.calculations->end());
  return dataset;
}

TEST(FormulaBudget, LongChainsResolveFromEitherEnd) {
  for (const bool isForward : {true, false}) {
    const auto cells = chain(isForward).resolvedCells();
    EXPECT_EQ(cells[0][0], numberCell(1007));
    EXPECT_EQ(cells[499][1], numberCell(8));
  }
  ResearchSpreadsheet circle = chain(true);
  circle.calculations->back().formula = cellAt(0, 0);
  EXPECT_EQ(outcome(circle), "validationFailed: Circular or deeply nested formula dependencies.");
}

// The most work that the budgets allow; quadratic work exceeds the time limit of the suite.
TEST(FormulaBudget, HostileDatasetsWithinTheBudgets) {
  Formula wide = apply(sum, std::vector<Formula>(17, constant(1)));
  for (int i = 0; i < 30; ++i)
    wide = apply(sum, {wide});
  EXPECT_EQ(outcome(tableOf(1, wide)),
            "resourceLimit: formula text or numeric result");  // doubles at every level

  // Every formula reads the outputs of the one after it: a chain in which each link is a range.
  ResearchSpreadsheet ranges = tallTable();
  for (std::int64_t row = 0; row < tallRows - 1; ++row)
    ranges.calculations->push_back({row, 0, apply(sum, {rangeOf(row + 1, 0, row + 1, 11)})});
  ranges.rows[tallRows - 1].cells[0] = numberCell(3);
  EXPECT_EQ(ResearchFormulaEvaluator::resolve(ranges).at(0).value, 3);
}

}  // namespace
}  // namespace zelvo
