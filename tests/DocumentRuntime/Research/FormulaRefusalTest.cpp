#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/FormulaUnits.hpp"
#include "DocumentRuntime/Research/ResearchFormulaEvaluator.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;
using enum Formula::Operation;

const std::string output = "A calculation needs one unique, null numeric output cell.";
const std::string address = "Formula references must address numeric dataset cells.";
const std::string badConstant = "Invalid formula constant.";
const std::string badCell = "Invalid cell reference.";
const std::string badRange = "Invalid formula range.";
const std::string badArguments = "Invalid formula arguments.";
const std::string operands = "Arithmetic requires exactly two scalar operands.";
const std::string mixedUnits = "Additive and aggregate calculations must use matching declared units.";
const std::string outputUnit = "The calculation output must preserve its input unit.";
const std::string scalar = "A formula output must be one scalar.";
const std::string circular = "Circular or deeply nested formula dependencies.";

/// Columns USD, USD, EUR, no unit, and a column of texts; two rows. Results go to the second row, whose cells
/// are blank.
ResearchSpreadsheet table() {
  ResearchSpreadsheet dataset = numericTable({"USD", "USD", "EUR", {}, {}});
  dataset.columns[4].kind = Column::Kind::text;
  dataset.rows = {numberRow({1, 2, 3, 4, {}}), numberRow({{}, {}, {}, {}, {}})};
  return dataset;
}

std::optional<DocumentError> errorOf(const ResearchSpreadsheet& dataset) {
  return testing::errorOf([&] { ResearchFormulaEvaluator::resolve(dataset); });
}

std::optional<DocumentError> errorOf(Formula formula, std::int64_t column = 0) {
  ResearchSpreadsheet dataset = table();
  dataset.calculations = {{.row = 1, .column = column, .formula = std::move(formula)}};
  return errorOf(dataset);
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
  const struct {
    Formula formula;
    std::string message;
  } rows[] = {
      {Formula{}, badConstant},
      {withValue(one, 1e15), badConstant},
      {withValue(one, -HUGE_VAL), badConstant},
      {withValue(one, std::nan("")), badConstant},
      {with(one, &Formula::row, 0), badConstant},
      {with(one, &Formula::column, 0), badConstant},
      {with(one, &Formula::endRow, 0), badConstant},
      {with(one, &Formula::endColumn, 0), badConstant},
      {withArguments(one), badConstant},
      {with(cellAt(0, 0), &Formula::row, {}), badCell},
      {with(cellAt(0, 0), &Formula::column, {}), badCell},
      {with(cellAt(0, 0), &Formula::endRow, 0), badCell},
      {with(cellAt(0, 0), &Formula::endColumn, 0), badCell},
      {withValue(cellAt(0, 0), 1), badCell},
      {withArguments(cellAt(0, 0)), badCell},
      {withArguments(cellAt(-1, 0)), badCell},
      {cellAt(-1, 0), address},
      {cellAt(2, 0), address},
      {cellAt(0, -1), address},
      {cellAt(0, 5), address},
      {cellAt(0, 4), address},
      {cellAt(lowest, highest), address},
      {apply(sum, {with(rangeOf(0, 0, 0, 0), &Formula::endRow, {})}), badRange},
      {apply(sum, {withValue(rangeOf(0, 0, 0, 0), 1)}), badRange},
      {apply(sum, {withArguments(rangeOf(0, 0, 0, 0))}), badRange},
      {apply(sum, {rangeOf(1, 0, 0, 0)}), badRange},
      {apply(sum, {rangeOf(0, 1, 0, 0)}), badRange},
      {apply(sum, {rangeOf(0, 0, 2, 0)}), badRange},
      {apply(sum, {rangeOf(0, 0, 0, 5)}), badRange},
      {apply(sum, {rangeOf(lowest, lowest, highest, highest)}), badRange},
      {apply(sum, {rangeOf(lowest, lowest, 0, 0)}), address},
      {apply(sum, {rangeOf(0, 0, 0, 4)}), address},
      {withValue(apply(add, {one, one}), 1), badArguments},
      {with(apply(add, {one, one}), &Formula::row, 0), badArguments},
      {apply(sum, {}), badArguments},
      {apply(sum, std::vector<Formula>(33, one)), badArguments},
      {apply(add, {one}), operands},
      {apply(add, {one, one, one}), operands},
      {apply(divide, {one, rangeOf(0, 0, 0, 1)}), operands},
      // The first fault in the order of evaluation counts.
      {apply(add, {cellAt(0, 4), Formula{}, one}), address},
      {apply(add, {Formula{}, cellAt(0, 4)}), badConstant},
      {apply(add, {rangeOf(0, 0, 0, 2), cellAt(0, 0)}), operands},
      {apply(add, {cellAt(0, 0), cellAt(0, 2)}), mixedUnits},
      {apply(sum, {rangeOf(0, 0, 0, 2)}), mixedUnits},
      {apply(multiply, {constant(2), apply(maximum, {cellAt(0, 0), cellAt(0, 3)})}), mixedUnits},
      {apply(sum, {cellAt(0, 2)}), outputUnit},
      {cellAt(0, 2), outputUnit},
      {apply(add, {cellAt(0, 3), one}), outputUnit},
      {rangeOf(0, 0, 0, 0), scalar},
      {rangeOf(0, 2, 0, 3), scalar},
  };
  for (const auto& row : rows) {
    const auto error = errorOf(row.formula);
    EXPECT_TRUE(error == DocumentError::validationFailed(row.message))
        << row.message << ": " << describe(error);
  }
  EXPECT_TRUE(errorOf(apply(multiply, {withValue(one, 1e14), withValue(one, 1e14)})) == std::nullopt);
  Formula huge = constant(1e14);
  for (int i = 0; i < 5; ++i)
    huge = apply(multiply, {huge, huge});
  EXPECT_TRUE(errorOf(huge) == DocumentError::resourceLimit("formula text or numeric result"))
      << describe(errorOf(huge));
}

TEST(FormulaRefusal, UnitsThatPass) {
  const struct {
    Formula formula;
    std::int64_t column;
  } rows[] = {
      {apply(multiply, {cellAt(0, 0), cellAt(0, 2)}), 3},
      {apply(divide, {cellAt(0, 0), cellAt(0, 2)}), 3},
      {apply(count, {rangeOf(0, 0, 0, 3)}), 2},
      {apply(sum, {apply(count, {cellAt(0, 2)}), cellAt(0, 0)}), 1},
      {apply(add, {cellAt(0, 3), constant(1)}), 3},
      {apply(sum, {constant(1)}), 2},
      {constant(1), 0},
  };
  for (const auto& row : rows)
    EXPECT_FALSE(errorOf(row.formula, row.column)) << describe(errorOf(row.formula, row.column));
}

TEST(FormulaRefusal, Outputs) {
  const struct {
    std::int64_t row;
    std::int64_t column;
  } rows[] = {{0, 0}, {1, 4}, {-1, 0}, {2, 0}, {1, -1}, {1, 5}};
  for (const auto& row : rows) {
    ResearchSpreadsheet dataset = table();
    dataset.calculations = {{.row = row.row, .column = row.column, .formula = constant(1)}};
    EXPECT_TRUE(errorOf(dataset) == DocumentError::validationFailed(output)) << row.row << ' ' << row.column;
  }
  // Every output is looked at before the first formula.
  ResearchSpreadsheet twice = table();
  twice.calculations = {{1, 0, Formula{}}, {1, 0, constant(1)}};
  EXPECT_TRUE(errorOf(twice) == DocumentError::validationFailed(output));
  ResearchSpreadsheet ragged = table();
  ragged.rows[1].cells.pop_back();
  ragged.calculations = {{1, 0, constant(1)}};
  EXPECT_TRUE(errorOf(ragged) == DocumentError::validationFailed(output));
}

TEST(FormulaRefusal, InputsOfADatasetThatWasNotValidated) {
  for (const auto& [cell, message] :
       std::vector<std::pair<Cell, std::string>>{{textCell("1"), "Formula input cannot be text."},
                                                 {numberCell(HUGE_VAL), "Invalid formula input."}}) {
    ResearchSpreadsheet dataset = table();
    dataset.rows[0].cells[1] = cell;
    dataset.calculations = {{1, 0, apply(count, {rangeOf(0, 0, 0, 1)})}};
    EXPECT_TRUE(errorOf(dataset) == DocumentError::validationFailed(message)) << describe(errorOf(dataset));
  }
}

TEST(FormulaRefusal, Circles) {
  const std::vector<std::vector<Calculation>> circles = {
      {{1, 0, cellAt(1, 0)}},
      {{1, 0, apply(count, {rangeOf(0, 0, 1, 1)})}},
      {{1, 0, cellAt(1, 1)}, {1, 1, cellAt(1, 0)}},
      {{1, 3, constant(1)}, {1, 0, cellAt(1, 1)}, {1, 1, apply(add, {cellAt(0, 0), cellAt(1, 0)})}},
  };
  for (const auto& circle : circles) {
    ResearchSpreadsheet dataset = table();
    dataset.calculations = circle;
    EXPECT_TRUE(errorOf(dataset) == DocumentError::validationFailed(circular)) << describe(errorOf(dataset));
  }
}

// A dependency is resolved when it is met: its fault comes before those that stand behind it, and its output
// is checked too.
TEST(FormulaRefusal, DependenciesFailWhereTheyAreMet) {
  ResearchSpreadsheet dataset = table();
  dataset.calculations = {{1, 0, apply(add, {cellAt(1, 1), Formula{}})}, {1, 1, cellAt(0, 2)}};
  EXPECT_TRUE(errorOf(dataset) == DocumentError::validationFailed(outputUnit)) << describe(errorOf(dataset));
  dataset.calculations = {{1, 0, apply(add, {Formula{}, cellAt(1, 1)})}, {1, 1, cellAt(0, 2)}};
  EXPECT_TRUE(errorOf(dataset) == DocumentError::validationFailed(badConstant)) << describe(errorOf(dataset));
}

TEST(FormulaUnits, Refusals) {
  const auto columns = table().columns;
  const auto unitError = [&](const Formula& formula) {
    return describe(testing::errorOf([&] { formulaUnits(formula, columns); }));
  };
  const auto failed = [](const std::string& message) {
    return DocumentError::validationFailed(message).errorDescription();
  };
  EXPECT_EQ(unitError(with(cellAt(0, 0), &Formula::column, {})), failed("Invalid unit reference."));
  EXPECT_EQ(unitError(cellAt(0, -1)), failed("Invalid unit reference."));
  EXPECT_EQ(unitError(cellAt(0, 5)), failed("Invalid unit reference."));
  EXPECT_EQ(unitError(rangeOf(0, 2, 0, 1)), failed("Invalid unit range."));
  EXPECT_EQ(unitError(rangeOf(0, 2, 0, 5)), failed("Invalid unit range."));
  EXPECT_EQ(formulaUnits(apply(multiply, {rangeOf(-9, 1, 99, 3), constant(1)}), columns),
            (std::set<std::string_view>{"", "EUR", "USD"}));

  Formula deep = cellAt(0, 0);
  for (int i = 0; i < 32; ++i)
    deep = apply(sum, {deep});
  EXPECT_EQ(formulaUnits(deep, columns), (std::set<std::string_view>{"USD"}));
  EXPECT_EQ(unitError(apply(sum, {deep})),
            DocumentError::resourceLimit("formula unit dependencies").errorDescription());
  EXPECT_TRUE(formulaUnits(apply(count, {deep}), columns).empty());
}

}  // namespace
}  // namespace zelvo
