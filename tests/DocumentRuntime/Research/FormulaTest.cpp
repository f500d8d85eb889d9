// Owns the values, texts, refusals and budgets of formulas.

#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "Datasets.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaRules.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

/// Columns A to C without unit and D for results; B3 is blank, C2 zero:
///
///     2: 1  2  0     3: 4  -  8     4: 0.1  0.2  0.3
ResearchSpreadsheet numbers(const std::string& list) {
  ResearchSpreadsheet dataset = numericTable({{}, {}, {}, {}});
  dataset.rows = {numberRow({1, 2, 0, {}}), numberRow({4, {}, 8, {}}), numberRow({0.1, 0.2, 0.3, {}})};
  dataset.calculations = calculations(list);
  return dataset;
}

TEST(FormulaEvaluator, CalculatesValuesAndTexts) {
  // In the texts, <A2> is a reference to a cell.
  for (const auto& [formula, value, text] : cases<3>(R"(
      #-2                     | -2.0  | -2.0
      #1e-5                   | 1e-05 | 1e-05
      [0,0]                   | 1.0   | <A2>
      [1,1]                   |       | <B3>
      add([0,0],[0,1])        | 3.0   | IF(COUNT(<A2>,<B2>)=2,IFERROR((<A2>+<B2>),""),"")
      subtract([0,0],#-2)     | 3.0   | IF(COUNT(<A2>,-2.0)=2,IFERROR((<A2>--2.0),""),"")
      multiply(#3,[0,1])      | 6.0   | IF(COUNT(3.0,<B2>)=2,IFERROR((3.0*<B2>),""),"")
      divide([0,0],[0,1])     | 0.5   | IF(COUNT(<A2>,<B2>)=2,IFERROR((<A2>/<B2>),""),"")
      divide([0,0],[0,2])     |       | IF(COUNT(<A2>,<C2>)=2,IFERROR((<A2>/<C2>),""),"")
      add([0,0],[1,1])        |       | IF(COUNT(<A2>,<B3>)=2,IFERROR((<A2>+<B3>),""),"")
      add([0,0,0,0],[0,1])    | 3.0   | IF(COUNT(A2:A2,<B2>)=2,IFERROR((A2:A2+<B2>),""),"")
      sum([0,0,2,2])          | 15.6  | IF(COUNT(A2:C4)=0,"",SUM(A2:C4))
      sum([2,0,2,2])          | 0.6000000000000001 | IF(COUNT(A4:C4)=0,"",SUM(A4:C4))
      average([0,0,1,2],#16)  | 5.166666666666667  | IF(COUNT(A2:C3,16.0)=0,"",AVERAGE(A2:C3,16.0))
      minimum([0,0,2,2])      | 0.0   | IF(COUNT(A2:C4)=0,"",MIN(A2:C4))
      maximum([0,0,2,2],[1,1]) | 8.0  | IF(COUNT(A2:C4,<B3>)=0,"",MAX(A2:C4,<B3>))
      sum([1,1,1,1])          |       | IF(COUNT(B3:B3)=0,"",SUM(B3:B3))
      count([1,1,1,1])        | 0.0   | COUNT(B3:B3))")) {
    const auto dataset = numbers("0,3=" + formula);
    EXPECT_EQ(dataset.resolvedCells()[0][3].displayText(), value) << formula;
    const std::string expected = std::regex_replace(text, std::regex("<(..)>"), R"(IF(ISNUMBER($1),$1,""))");
    EXPECT_EQ(ResearchFormulaEvaluator::resolve(dataset).at(0).formula, expected);
  }
}

/// Columns USD, USD, EUR, no unit, and a column of texts; two rows. Results are in the second row, whose
/// cells are blank.
ResearchSpreadsheet unitTable(const std::string& list) {
  ResearchSpreadsheet dataset = numericTable({"USD", "USD", "EUR", {}, {}});
  dataset.columns[4].kind = Column::Kind::text;
  dataset.rows = {numberRow({1, 2, 3, 4, {}}), numberRow({{}, {}, {}, {}, {}})};
  dataset.calculations = calculations(list);
  return dataset;
}

Outcome outcome(const ResearchSpreadsheet& dataset) {
  return outcomeOf([&] { ResearchFormulaEvaluator::resolve(dataset); });
}

TEST(FormulaRefusal, NamesTheFirstFault) {
  for (const auto& [message, formulas] : cases<2>(R"(
      Invalid formula constant. => {"op":"number"} #1e15 #-1e15 #1{"row":0} #1{"column":0} #1{"endRow":0}
      Invalid formula constant. => #1{"endColumn":0} #1{"arguments":[#1]}
      Invalid cell reference. => [0,0]{"row":null} [0,0]{"column":null} [0,0]{"endRow":0} [0,0]{"endColumn":0}
      Formula references must address numeric dataset cells. => [-1,0] [2,0] [0,-1] [0,5] [0,4]
      Formula references must address numeric dataset cells. => [-9223372036854775808,9223372036854775807]
      Invalid formula range. => sum([0,0,0,0]{"row":null}) sum([0,0,0,0]{"column":null})
      Invalid formula range. => sum([1,0,0,0]) sum([0,1,0,0]) sum([0,0,2,0]) sum([0,0,0,5])
      Invalid formula range. => sum([-9223372036854775808,0,9223372036854775807,0])
      Formula references must address numeric dataset cells. => sum([-9223372036854775808,0,0,0]) sum([0,0,0,4])
      Invalid formula arguments. => add(#1,#1){"value":1} add(#1,#1){"row":0} sum() sum(#1,ONES)
      Arithmetic requires exactly two scalar operands. => add(#1) add(#1,#1,#1) divide(#1,[0,0,0,1])
      Formula references must address numeric dataset cells. => add([0,4],{"op":"number"},#1)
      Additive and aggregate calculations must use matching declared units. => add([0,0],[0,2])
      Additive and aggregate calculations must use matching declared units. => sum([0,0,0,2]) average([0,1,0,2])
      Additive and aggregate calculations must use matching declared units. => multiply(#2,maximum([0,0],[0,3]))
      The calculation output must preserve its input unit. => sum([0,2]) [0,2] add([0,3],#1)
      A formula output must be one scalar. => [0,0,0,0] [0,2,0,3]
      A calculation needs one unique, null numeric output cell. => 0,0=#1 1,4=#1 -1,0=#1 2,0=#1 1,-1=#1 1,5=#1
      Circular or deeply nested formula dependencies. => [1,0] count([0,0,1,1]))")) {
    for (std::string list : words(formulas)) {
      if (list.find('=') == std::string::npos) list.insert(0, "1,0=");
      list = std::regex_replace(list, std::regex("ONES"), repeated("#1,", 31) + "#1");
      EXPECT_EQ(outcome(unitTable(list)), "validationFailed: " + message) << list;
    }
  }
}

TEST(FormulaRefusal, ChecksDependenciesWhereTheyAreMet) {
  for (const auto& [list, message] : cases<2>(
           R"(
      1,0={"op":"number"} 1,0=#1 => validationFailed: A calculation needs one unique, null numeric output cell.
      1,0=[1,1] 1,1=[1,0] => validationFailed: Circular or deeply nested formula dependencies.
      1,0=add([1,1],{"op":"number"}) 1,1=[0,2] => validationFailed: The calculation output must preserve its input unit.
      1,0=#1e14 1,1=multiply([1,0],[1,0]) 1,2=multiply([1,1],[1,1]) 1,3=multiply([1,2],[1,2]) =>
      1,0=#1e14 1,1=multiply([1,0],[1,0]) 1,2=multiply(multiply([1,1],[1,1]),multiply([1,1],[1,1])) )"
           R"(1,3=multiply(multiply([1,2],[1,2]),[1,2]) => resourceLimit: formula text or numeric result)"))
    EXPECT_EQ(outcome(unitTable(list)), message) << list;
}

TEST(FormulaRefusal, AcceptsOtherUnits) {
  for (const std::string& list : words(R"(1,3=multiply([0,0],[0,2]) 1,3=divide([0,0],[0,2])
      1,2=count([0,0,0,3]) 1,1=sum(count([0,2]),[0,0]) 1,3=add([0,3],#1) 1,2=sum(#1) 1,0=multiply(#1e14,#1e14))"))
    EXPECT_EQ(outcome(unitTable(list)), "") << list;
}

TEST(FormulaRefusal, ChecksDatasetsThatWereNotValidated) {
  ResearchSpreadsheet dataset = unitTable("1,0=count([0,0,0,1])");
  dataset.rows[0].cells[1] = Cell("1");
  EXPECT_EQ(outcome(dataset), "validationFailed: Formula input cannot be text.");
  dataset.rows[0].cells[1] = Cell(HUGE_VAL);
  EXPECT_EQ(outcome(dataset), "validationFailed: Invalid formula input.");
}

TEST(FormulaUnits, AreThoseOfAllColumns) {
  const std::string deepest = repeated("sum(", 32) + "[0,0]" + repeated(")", 32);
  for (const auto& [formula, units] : cases<2>(R"(
      [0,-1] => validationFailed: Invalid unit reference. ; [0,5] => validationFailed: Invalid unit reference.
      [0,2,0,1] => validationFailed: Invalid unit range. ; [0,2,0,5] => validationFailed: Invalid unit range.
      multiply([-9,1,99,3],#1) => /EUR/USD/ ; DEEPEST => USD/ ; count(sum(DEEPEST)) =>
      sum(DEEPEST) => resourceLimit: formula unit dependencies)")) {
    const auto list = calculations("0,0=" + std::regex_replace(formula, std::regex("DEEPEST"), deepest));
    const ResearchSpreadsheet table = unitTable("1,0=#1");
    std::string found;
    const auto refusal = outcomeOf([&] {
      for (const std::string_view unit : formulaUnits(list[0].formula, table.columns))
        found.append(unit).append("/");
    });
    EXPECT_EQ(refusal.text + found, units) << formula;
  }
}

constexpr std::size_t rowCount = 500;
const std::string circular = "validationFailed: Circular or deeply nested formula dependencies.";

/// 500 rows of twelve blank numeric cells, and so many calculations in the last columns.
ResearchSpreadsheet tall(std::size_t count, const std::string& formula) {
  ResearchSpreadsheet dataset = numericTable(std::vector<std::optional<std::string>>(12));
  dataset.rows.resize(rowCount, numberRow(std::vector<std::optional<double>>(12)));
  dataset.calculations.emplace(count, calculations("0,0=" + formula)[0]);
  for (std::size_t i = 0; i < count; ++i) {
    Calculation& calculation = (*dataset.calculations)[i];
    calculation.row = static_cast<std::int64_t>(i % rowCount);
    calculation.column = 11 - static_cast<std::int64_t>(i / rowCount);
  }
  return dataset;
}

/// A count of so many copies of an argument.
std::string countOf(std::size_t copies, const std::string& argument) {
  return "count(" + repeated(argument + ",", copies - 1) + argument + ")";
}

std::string nested(const std::string& operation, std::size_t levels, const std::string& innermost) {
  return repeated(operation + "(", levels) + innermost + repeated(")", levels);
}

TEST(FormulaBudget, RefusesOneMoreThanEachLimit) {
  using D = ResearchSpreadsheet&;
  const auto nodes = [](std::size_t last) {
    return "count(" + countOf(24, "#1") + "," + countOf(last - 27, "#1") + ")";
  };
  const auto text = [](std::size_t bytes) {
    const std::string widest = "#-1.2345678901234567e-300";  // 24 characters
    return "count(" + repeated(countOf(32, widest) + ",", 10) + repeated(widest + ",", 4) + "#123456789012." +
           (bytes == 8192 ? "25)" : "125)");
  };
  expectLimits<ResearchSpreadsheet>(
      {{"calculations", 1000, "resourceLimit: calculation count", [](D d, auto n) { d = tall(n, "#1"); }},
       {"depth", 31, "resourceLimit: formula expression",
        [](D d, auto n) { d = tall(1, nested("count", n, "#1")); }},
       {"nodes", 50, "resourceLimit: formula expression",
        [&](D d, auto n) {
          d = tall(1000, nodes(50));
          d.calculations->back().formula = calculations("0,0=" + nodes(n))[0].formula;
        }},
       {"cell reads", 40, "resourceLimit: formula cell dependencies",
        [](D d, auto n) {
          d = tall(n, "count([0,0,499,9])");
          if (n > 40) d.calculations->back().formula = calculations("0,0=[-1,-1]")[0].formula;
        }},
       {"text", 8192, "resourceLimit: formula text or numeric result",
        [&](D d, auto n) { d = tall(1, text(n)); }},
       // A dependency that is met at depth 32 must have been resolved before; its own formula begins at depth
       // 1.
       {"depth of a dependency", 30, circular,
        [](D d, auto n) {
          d = tall(0, "#1");
          d.calculations =
              calculations("0,0=" + nested("count", n, "[1,0]") + " 1,0=" + nested("count", 31, "#1"));
        }}},
      ResearchFormulaEvaluator::resolve);
}

TEST(FormulaBudget, ResolvesLongChainsFromEitherEnd) {
  // Every calculation is one more than the next.
  std::string list;
  for (std::size_t i = 0; i < 1000; ++i) {
    const auto place = [](std::size_t at) {
      return std::to_string(at % rowCount) + "," + std::to_string(at / rowCount);
    };
    list += (i > 0 ? " " : "") + place(i) + "=add(#1,[" + place(i + 1) + "])";
  }
  ResearchSpreadsheet chain = tall(0, "#1");
  chain.calculations = calculations(list);
  chain.rows[0].cells[2] = Cell(7);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(chain.resolvedCells()[0][0], Cell(1007));
    std::ranges::reverse(*chain.calculations);
  }
  chain.calculations->back().formula = calculations("0,0=[0,0]")[0].formula;
  EXPECT_EQ(outcomeOf([&] { chain.resolvedCells(); }), circular);
}

// Quadratic work exceeds the time limit of the suite.
TEST(FormulaBudget, BoundsTheWork) {
  const std::string doubling = nested("sum", 30, "sum(" + repeated("#1,", 16) + "#1)");
  EXPECT_EQ(outcomeOf([&] { tall(1, doubling).resolvedCells(); }),
            "resourceLimit: formula text or numeric result");
}

}  // namespace
}  // namespace zelvo
