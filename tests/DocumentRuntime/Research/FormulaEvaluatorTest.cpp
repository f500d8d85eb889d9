// Owns the values and texts of formulas.

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"

namespace zelvo {
namespace {

using namespace testing;

/// Columns A to C without unit and D for results; B3 is blank, C2 zero:
///
///     2: 1  2  0     3: 4  -  8     4: 0.1  0.2  0.3
ResearchSpreadsheet table(Formula formula) {
  ResearchSpreadsheet dataset = numericTable({{}, {}, {}, {}});
  dataset.rows = {numberRow({1, 2, 0, {}}), numberRow({4, {}, 8, {}}), numberRow({0.1, 0.2, 0.3, {}})};
  dataset.calculations = {{.row = 0, .column = 3, .formula = std::move(formula)}};
  return dataset;
}

TEST(FormulaEvaluator, ValuesAndTexts) {
  const std::string a2 = R"(IF(ISNUMBER(A2),A2,""))";
  const std::string b2 = R"(IF(ISNUMBER(B2),B2,""))";
  const std::string b3 = R"(IF(ISNUMBER(B3),B3,""))";
  const std::string c2 = R"(IF(ISNUMBER(C2),C2,""))";
  const auto arithmetic = [](const std::string& a, char op, const std::string& b) {
    return "IF(COUNT(" + a + "," + b + ")=2,IFERROR((" + a + op + b + R"(),""),""))";
  };
  const auto aggregate = [](const std::string& function, const std::string& arguments) {
    return "IF(COUNT(" + arguments + R"()=0,"",)" + function + "(" + arguments + "))";
  };
  using enum Formula::Operation;
  const Formula all = rangeOf(0, 0, 2, 2);
  const Formula hole = rangeOf(1, 1, 1, 1);
  const Formula quotient = apply(divide, {constant(1), constant(0)});
  const struct {
    Formula formula;
    std::optional<double> value;
    std::string text;
  } rows[] = {
      {constant(-2), -2, "-2.0"},
      {constant(1e-5), 1e-5, "1e-05"},
      {cellAt(0, 0), 1, a2},
      {cellAt(1, 1), {}, b3},
      {apply(add, {cellAt(0, 0), cellAt(0, 1)}), 3, arithmetic(a2, '+', b2)},
      {apply(subtract, {cellAt(0, 0), constant(-2)}), 3, arithmetic(a2, '-', "-2.0")},
      {apply(multiply, {constant(3), cellAt(0, 1)}), 6, arithmetic("3.0", '*', b2)},
      {apply(divide, {cellAt(0, 0), cellAt(0, 1)}), 0.5, arithmetic(a2, '/', b2)},
      {apply(divide, {cellAt(0, 0), cellAt(0, 2)}), {}, arithmetic(a2, '/', c2)},
      {apply(divide, {cellAt(0, 0), constant(-0.0)}), {}, arithmetic(a2, '/', "-0.0")},
      {apply(add, {cellAt(0, 0), cellAt(1, 1)}), {}, arithmetic(a2, '+', b3)},
      {apply(add, {quotient, constant(1)}), {}, arithmetic(arithmetic("1.0", '/', "0.0"), '+', "1.0")},
      {apply(add, {rangeOf(0, 0, 0, 0), cellAt(0, 1)}), 3, arithmetic("A2:A2", '+', b2)},
      {apply(sum, {all}), 15.0 + 0.1 + 0.2 + 0.3, aggregate("SUM", "A2:C4")},
      {apply(sum, {rangeOf(2, 0, 2, 2)}), 0.1 + 0.2 + 0.3, aggregate("SUM", "A4:C4")},
      {apply(average, {all, constant(16)}), (15.0 + 0.1 + 0.2 + 0.3 + 16.0) / 9,
       aggregate("AVERAGE", "A2:C4,16.0")},
      {apply(minimum, {all}), 0, aggregate("MIN", "A2:C4")},
      {apply(maximum, {all, cellAt(1, 1)}), 8, aggregate("MAX", "A2:C4," + b3)},
      {apply(sum, {hole}), {}, aggregate("SUM", "B3:B3")},
      {apply(average, {hole, cellAt(1, 1)}), {}, aggregate("AVERAGE", "B3:B3," + b3)},
      {apply(maximum, {hole}), {}, aggregate("MAX", "B3:B3")},
      {apply(count, {all, cellAt(1, 1), constant(7)}), 9, "COUNT(A2:C4," + b3 + ",7.0)"},
      {apply(count, {hole}), 0, "COUNT(B3:B3)"},
  };
  for (const auto& row : rows) {
    const auto resolved = ResearchFormulaEvaluator::resolve(table(row.formula));
    EXPECT_EQ(resolved.at(0).value, row.value) << row.text;
    EXPECT_EQ(resolved.at(0).formula, row.text);
  }
}

TEST(FormulaEvaluator, AddsPlainlyRowByRow) {
  using enum Formula::Operation;
  ResearchSpreadsheet dataset = table(apply(sum, {rangeOf(0, 0, 1, 1), constant(0.5)}));
  dataset.rows[0] = numberRow({1e16, 1, {}, {}});
  dataset.rows[1] = numberRow({-1e16, 1, {}, {}});
  // Column by column, or with what rounding loses carried along, it would be 2.5.
  EXPECT_EQ(ResearchFormulaEvaluator::resolve(dataset).at(0).value, 1.5);
  dataset.calculations->front().formula.op = average;
  EXPECT_EQ(ResearchFormulaEvaluator::resolve(dataset).at(0).value, 0.3);
}

TEST(FormulaEvaluator, KeepsTheOrderOfTheListAndFillsTheCells) {
  using enum Formula::Operation;
  ResearchSpreadsheet dataset = table(apply(add, {cellAt(1, 3), cellAt(2, 3)}));
  dataset.calculations->push_back({2, 3, apply(divide, {constant(1), constant(0)})});
  dataset.calculations->push_back({1, 3, apply(count, {rangeOf(0, 0, 2, 2), cellAt(2, 3)})});
  const auto resolved = ResearchFormulaEvaluator::resolve(dataset);
  ASSERT_EQ(resolved.size(), 3U);
  for (std::size_t i = 0; i < resolved.size(); ++i)
    EXPECT_EQ(resolved[i].row, (*dataset.calculations)[i].row);
  const auto cells = dataset.resolvedCells();
  EXPECT_EQ(cells[0], (std::vector<Cell>{numberCell(1), numberCell(2), numberCell(0), blankCell()}));
  EXPECT_EQ(cells[1], (std::vector<Cell>{numberCell(4), blankCell(), numberCell(8), numberCell(8)}));
  EXPECT_EQ(cells[2][3], blankCell());
}

}  // namespace
}  // namespace zelvo
