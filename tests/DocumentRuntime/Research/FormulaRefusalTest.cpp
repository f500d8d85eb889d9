// Owns what the evaluator refuses.

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaRules.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;
using enum Formula::Operation;

const std::string output = "validationFailed: A calculation needs one unique, null numeric output cell.";
const std::string address = "validationFailed: Formula references must address numeric dataset cells.";
const std::string badConstant = "validationFailed: Invalid formula constant.";
const std::string badCell = "validationFailed: Invalid cell reference.";
const std::string badRange = "validationFailed: Invalid formula range.";
const std::string badArguments = "validationFailed: Invalid formula arguments.";
const std::string operands = "validationFailed: Arithmetic requires exactly two scalar operands.";
const std::string mixedUnits =
    "validationFailed: Additive and aggregate calculations must use matching declared units.";
const std::string outputUnit = "validationFailed: The calculation output must preserve its input unit.";
const std::string scalar = "validationFailed: A formula output must be one scalar.";
const std::string circular = "validationFailed: Circular or deeply nested formula dependencies.";

/// Columns USD, USD, EUR, no unit, and a column of texts; two rows. Results go to the second row, whose cells
/// are blank.
ResearchSpreadsheet table() {
  ResearchSpreadsheet dataset = numericTable({"USD", "USD", "EUR", {}, {}});
  dataset.columns[4].kind = Column::Kind::text;
  dataset.rows = {numberRow({1, 2, 3, 4, {}}), numberRow({{}, {}, {}, {}, {}})};
  return dataset;
}

Outcome outcome(const ResearchSpreadsheet& dataset) {
  return outcomeOf([&] { ResearchFormulaEvaluator::resolve(dataset); });
}

Outcome outcome(const std::vector<Calculation>& calculations) {
  ResearchSpreadsheet dataset = table();
  dataset.calculations = calculations;
  return outcome(dataset);
}

Outcome outcome(const Formula& formula, std::int64_t column = 0) {
  return outcome(std::vector<Calculation>{{1, column, formula}});
}

Formula with(Formula formula, std::optional<std::int64_t> Formula::*field,
             std::optional<std::int64_t> value) {
  formula.*field = value;
  return formula;
}

Formula withValue(Formula formula, double value) {
  formula.value = value;
  return formula;
}

Formula withArguments(Formula formula) {
  formula.arguments = {constant(1)};
  return formula;
}

TEST(FormulaRefusal, ShapesAndReferences) {
  const Formula one = constant(1);
  const auto lowest = std::numeric_limits<std::int64_t>::min();
  const auto highest = std::numeric_limits<std::int64_t>::max();
  const Formula cell = cellAt(0, 0);
  const Formula range = rangeOf(0, 0, 0, 0);
  const Formula sumOfOnes = apply(add, {one, one});
  const std::vector<Formula> tooMany(33, one);
  const auto sumOf = [](const Formula& argument) { return apply(sum, {argument}); };
  const std::pair<std::string, std::vector<Formula>> rows[] = {
      {badConstant,
       {Formula{}, withValue(one, 1e15), withValue(one, -HUGE_VAL), withValue(one, std::nan("")),
        with(one, &Formula::row, 0), with(one, &Formula::column, 0), with(one, &Formula::endRow, 0),
        with(one, &Formula::endColumn, 0), withArguments(one)}},
      {badCell,
       {with(cell, &Formula::row, {}), with(cell, &Formula::column, {}), with(cell, &Formula::endRow, 0),
        with(cell, &Formula::endColumn, 0), withValue(cell, 1), withArguments(cell),
        withArguments(cellAt(-1, 0))}},
      {address,
       {cellAt(-1, 0), cellAt(2, 0), cellAt(0, -1), cellAt(0, 5), cellAt(0, 4), cellAt(lowest, highest)}},
      {badRange,
       {sumOf(with(range, &Formula::endRow, {})), sumOf(withValue(range, 1)), sumOf(withArguments(range)),
        sumOf(rangeOf(1, 0, 0, 0)), sumOf(rangeOf(0, 1, 0, 0)), sumOf(rangeOf(0, 0, 2, 0)),
        sumOf(rangeOf(0, 0, 0, 5)), sumOf(rangeOf(lowest, lowest, highest, highest))}},
      {address, {sumOf(rangeOf(lowest, lowest, 0, 0)), sumOf(rangeOf(0, 0, 0, 4))}},
      {badArguments,
       {withValue(sumOfOnes, 1), with(sumOfOnes, &Formula::row, 0), apply(sum, {}), apply(sum, tooMany)}},
      {operands, {apply(add, {one}), apply(add, {one, one, one}), apply(divide, {one, rangeOf(0, 0, 0, 1)})}},
      // The first fault in the order of evaluation counts.
      {address, {apply(add, {cellAt(0, 4), Formula{}, one})}},
      {badConstant, {apply(add, {Formula{}, cellAt(0, 4)})}},
      {operands, {apply(add, {rangeOf(0, 0, 0, 2), cell})}},
      {mixedUnits,
       {apply(add, {cell, cellAt(0, 2)}), sumOf(rangeOf(0, 0, 0, 2)),
        apply(multiply, {constant(2), apply(maximum, {cell, cellAt(0, 3)})})}},
      {outputUnit, {sumOf(cellAt(0, 2)), cellAt(0, 2), apply(add, {cellAt(0, 3), one})}},
      {scalar, {range, rangeOf(0, 2, 0, 3)}},
  };
  for (const auto& [message, formulas] : rows) {
    for (std::size_t i = 0; i < formulas.size(); ++i)
      EXPECT_EQ(outcome(formulas[i]), message) << "formula " << i;
  }
  EXPECT_EQ(outcome(apply(multiply, {constant(1e14), constant(1e14)})), "");
  Formula huge = constant(1e14);
  for (int i = 0; i < 5; ++i)
    huge = apply(multiply, {huge, huge});
  EXPECT_EQ(outcome(huge), "resourceLimit: formula text or numeric result");
}

TEST(FormulaRefusal, UnitsThatPass) {
  const std::pair<Formula, std::int64_t> rows[] = {
      {apply(multiply, {cellAt(0, 0), cellAt(0, 2)}), 3},
      {apply(divide, {cellAt(0, 0), cellAt(0, 2)}), 3},
      {apply(count, {rangeOf(0, 0, 0, 3)}), 2},
      {apply(sum, {apply(count, {cellAt(0, 2)}), cellAt(0, 0)}), 1},
      {apply(add, {cellAt(0, 3), constant(1)}), 3},
      {apply(sum, {constant(1)}), 2}};
  for (const auto& [formula, column] : rows)
    EXPECT_EQ(outcome(formula, column), "") << column;
}

TEST(FormulaRefusal, Outputs) {
  for (const auto& [row, column] : {std::pair{0, 0}, {1, 4}, {-1, 0}, {2, 0}, {1, -1}, {1, 5}})
    EXPECT_EQ(outcome({{row, column, constant(1)}}), output) << row << ' ' << column;
  // Every output is looked at before the first formula.
  EXPECT_EQ(outcome({{1, 0, Formula{}}, {1, 0, constant(1)}}), output);
  ResearchSpreadsheet ragged = table();
  ragged.rows[1].cells.pop_back();
  ragged.calculations = {{1, 0, constant(1)}};
  EXPECT_EQ(outcome(ragged), output);
}

TEST(FormulaRefusal, InputsOfADatasetThatWasNotValidated) {
  const auto outcomeWith = [](const Cell& cell) {
    ResearchSpreadsheet dataset = table();
    dataset.rows[0].cells[1] = cell;
    dataset.calculations = {{1, 0, apply(count, {rangeOf(0, 0, 0, 1)})}};
    return outcome(dataset);
  };
  EXPECT_EQ(outcomeWith(textCell("1")), "validationFailed: Formula input cannot be text.");
  EXPECT_EQ(outcomeWith(numberCell(HUGE_VAL)), "validationFailed: Invalid formula input.");
}

TEST(FormulaRefusal, Circles) {
  EXPECT_EQ(outcome({{1, 0, cellAt(1, 0)}}), circular);
  EXPECT_EQ(outcome({{1, 0, apply(count, {rangeOf(0, 0, 1, 1)})}}), circular);
  EXPECT_EQ(outcome({{1, 0, cellAt(1, 1)}, {1, 1, cellAt(1, 0)}}), circular);
  const Formula back = apply(add, {cellAt(0, 0), cellAt(1, 0)});
  EXPECT_EQ(outcome({{1, 3, constant(1)}, {1, 0, cellAt(1, 1)}, {1, 1, back}}), circular);
}

// A dependency is resolved when it is met: its fault is reported before later ones, and its output is checked
// too.
TEST(FormulaRefusal, DependenciesFailWhereTheyAreMet) {
  EXPECT_EQ(outcome({{1, 0, apply(add, {cellAt(1, 1), Formula{}})}, {1, 1, cellAt(0, 2)}}), outputUnit);
  EXPECT_EQ(outcome({{1, 0, apply(add, {Formula{}, cellAt(1, 1)})}, {1, 1, cellAt(0, 2)}}), badConstant);
}

TEST(FormulaUnits, Refusals) {
  const auto columns = table().columns;
  const auto unitOutcome = [&](const Formula& formula) {
    return outcomeOf([&] { formulaUnits(formula, columns); });
  };
  for (const Formula& formula : {with(cellAt(0, 0), &Formula::column, {}), cellAt(0, -1), cellAt(0, 5)})
    EXPECT_EQ(unitOutcome(formula), "validationFailed: Invalid unit reference.");
  for (const Formula& formula : {rangeOf(0, 2, 0, 1), rangeOf(0, 2, 0, 5)})
    EXPECT_EQ(unitOutcome(formula), "validationFailed: Invalid unit range.");
  EXPECT_EQ(formulaUnits(apply(multiply, {rangeOf(-9, 1, 99, 3), constant(1)}), columns),
            (std::set<std::string_view>{"", "EUR", "USD"}));

  Formula deep = cellAt(0, 0);
  for (int i = 0; i < 32; ++i)
    deep = apply(sum, {deep});
  EXPECT_EQ(formulaUnits(deep, columns), (std::set<std::string_view>{"USD"}));
  EXPECT_EQ(unitOutcome(apply(sum, {deep})), "resourceLimit: formula unit dependencies");
  EXPECT_TRUE(formulaUnits(apply(count, {deep}), columns).empty());
}

}  // namespace
}  // namespace zelvo
