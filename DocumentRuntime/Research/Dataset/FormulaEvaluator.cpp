#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"

#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaOperations.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaRules.hpp"

namespace zelvo {
namespace {

using Operation = Formula::Operation;
using Cell = ResearchSpreadsheet::Cell;
using Column = ResearchSpreadsheet::Column;
using ResearchFormulaEvaluator::maximumCalculations;
using ResearchFormulaEvaluator::maximumNodes;

/// The depth of one expression tree; that of the root is 1.
constexpr std::size_t maximumDepth = 32;
/// The number of cell reads for one dataset, single cells and ranges together: otherwise each of many
/// formulas could read the whole table.
constexpr std::size_t maximumCellReads = 200'000;
/// The bytes of one node's text. An arithmetic operation repeats each operand, so the text doubles with every
/// level. Also the longest formula that spreadsheets accept.
constexpr std::size_t maximumTextBytes = 8192;

bool isAdditive(Operation operation) {
  switch (operation) {
    case Operation::add:
    case Operation::subtract:
    case Operation::sum:
    case Operation::average:
    case Operation::minimum:
    case Operation::maximum:
      return true;
    default:
      return false;
  }
}

DocumentError circularDependencies() {
  return DocumentError::validationFailed("Circular or deeply nested formula dependencies.");
}

/// The coordinates of a dataset cell as written in a formula. Not validated.
struct Coordinates {
  std::int64_t row;
  std::int64_t column;

  friend bool operator<(const Coordinates& a, const Coordinates& b) {
    return std::tie(a.row, a.column) < std::tie(b.row, b.column);
  }
};

/// Resolves one dataset. Chains of dependencies can be as long as the list of formulas, so evaluation uses an
/// explicit stack, not recursion. On it an operation waits for its next argument, and a cell or range for the
/// calculation whose output it reads.
class Resolution {
 public:
  explicit Resolution(const ResearchSpreadsheet& spreadsheet)
      : spreadsheet_(spreadsheet), calculations_(spreadsheet.calculationList()) {}

  std::vector<ResolvedCalculation> run() {
    if (calculations_.size() > maximumCalculations) throw DocumentError::resourceLimit("calculation count");
    indexOutputs();
    states_.resize(calculations_.size());
    resolved_.resize(calculations_.size());
    for (std::size_t i = 0; i < calculations_.size(); ++i) {
      if (states_[i] == State::untouched) begin(i);
      while (!waiting_.empty())
        advance();
    }
    return std::move(resolved_);
  }

 private:
  enum class State { untouched, inProgress, resolved };

  /// A node whose evaluation has begun.
  struct Node {
    const Formula* formula;
    std::size_t calculation;  ///< index of its calculation
    std::size_t depth;
    Coordinates next = {0, 0};                  ///< of a cell or range: the next cell to read
    std::vector<std::optional<double>> values;  ///< of a cell or range: the values read so far
    std::vector<EvaluatedFormula> arguments;    ///< of an operation: the arguments evaluated so far
  };

  void indexOutputs() {
    for (std::size_t i = 0; i < calculations_.size(); ++i) {
      const Coordinates output = {calculations_[i].row, calculations_[i].column};
      if (!isNumeric(output) || !cellAt(output).isBlank() || !calculationAt_.try_emplace(output, i).second)
        throw DocumentError::validationFailed("A calculation needs one unique, null numeric output cell.");
    }
  }

  void begin(std::size_t calculation) {
    states_[calculation] = State::inProgress;
    enter(calculations_[calculation].formula, calculation, 1);
  }

  void enter(const Formula& formula, std::size_t calculation, std::size_t depth) {
    if (depth > maximumDepth || ++nodes_ > maximumNodes)
      throw DocumentError::resourceLimit("formula expression");
    checkFormulaShape(formula, static_cast<std::int64_t>(spreadsheet_.rows.size()),
                      static_cast<std::int64_t>(spreadsheet_.columns.size()));
    waiting_.push_back({.formula = &formula,
                        .calculation = calculation,
                        .depth = depth,
                        .next = {formula.row.value_or(0), formula.column.value_or(0)},
                        .values = {},
                        .arguments = {}});
  }

  /// Advances the innermost node by one step: it ends, or another node is pushed.
  void advance() {
    Node& node = waiting_.back();
    const Formula& formula = *node.formula;
    switch (formula.op) {
      case Operation::number:
        return end({{*formula.value}, DoubleText::shortest(*formula.value)});
      case Operation::cell:
      case Operation::range:
        return advanceReading(node);
      default:
        if (node.arguments.size() == formula.argumentList().size()) return end(applied(node));
        enter(formula.argumentList()[node.arguments.size()], node.calculation, node.depth + 1);
    }
  }

  void advanceReading(Node& node) {
    const Formula& formula = *node.formula;
    const Coordinates last = {formula.endRow.value_or(*formula.row),
                              formula.endColumn.value_or(*formula.column)};
    while (node.next.row <= last.row) {
      const Coordinates cell = node.next;
      countRead(cell);
      node.next = cell.column < last.column ? Coordinates{cell.row, cell.column + 1}
                                            : Coordinates{cell.row + 1, *formula.column};
      const auto output = calculationAt_.find(cell);
      if (output == calculationAt_.end()) {
        node.values.push_back(inputAt(cell));
      } else if (states_[output->second] == State::resolved) {
        node.values.push_back(resolved_[output->second].value);
      } else if (states_[output->second] == State::inProgress || node.depth >= maximumDepth) {
        throw circularDependencies();
      } else {
        return begin(output->second);  // its result is appended to `values`
      }
    }
    end({std::move(node.values), referenceText(formula, last)});
  }

  static std::string referenceText(const Formula& formula, Coordinates last) {
    const CellAddress first = sheetAddress(*formula.row, *formula.column);
    if (formula.op == Operation::range) return CellRange{first, sheetAddress(last.row, last.column)}.name();
    const std::string name = first.name();
    return "IF(ISNUMBER(" + name + ")," + name + ",\"\")";
  }

  EvaluatedFormula applied(const Node& node) const {
    const Formula& formula = *node.formula;
    EvaluatedFormula result = applyOperation(formula.op, node.arguments);
    if (isAdditive(formula.op) && formulaUnits(formula, spreadsheet_.columns).size() > 1) {
      throw DocumentError::validationFailed(
          "Additive and aggregate calculations must use matching declared units.");
    }
    const std::optional<double> value = result.values.front();
    if ((value && !std::isfinite(*value)) || result.text.size() > maximumTextBytes)
      throw DocumentError::resourceLimit("formula text or numeric result");
    return result;
  }

  /// Passes the innermost node's result to the node that waits for it.
  void end(EvaluatedFormula result) {
    const std::size_t calculation = waiting_.back().calculation;
    const bool isRoot = waiting_.back().depth == 1;
    waiting_.pop_back();
    if (!isRoot) {
      waiting_.back().arguments.push_back(std::move(result));
      return;
    }
    record(calculation, std::move(result));
    if (!waiting_.empty()) waiting_.back().values.push_back(resolved_[calculation].value);
  }

  void record(std::size_t index, EvaluatedFormula result) {
    const Calculation& calculation = calculations_[index];
    const Operation operation = calculation.formula.op;
    if (isAdditive(operation) || operation == Operation::cell) {
      const auto units = formulaUnits(calculation.formula, spreadsheet_.columns);
      if (!units.empty() && *units.begin() != columnAt(calculation.column).unitText())
        throw DocumentError::validationFailed("The calculation output must preserve its input unit.");
    }
    if (result.values.size() != 1 || operation == Operation::range)
      throw DocumentError::validationFailed("A formula output must be one scalar.");
    resolved_[index] = {calculation.row, calculation.column, std::move(result.text), result.values.front()};
    states_[index] = State::resolved;
  }

  void countRead(Coordinates cell) {
    if (++cellReads_ > maximumCellReads) throw DocumentError::resourceLimit("formula cell dependencies");
    if (!isNumeric(cell))
      throw DocumentError::validationFailed("Formula references must address numeric dataset cells.");
  }

  std::optional<double> inputAt(Coordinates coordinates) const {
    const Cell& cell = cellAt(coordinates);
    if (cell.text() != nullptr) throw DocumentError::validationFailed("Formula input cannot be text.");
    if (cell.isBlank()) return std::nullopt;
    if (!std::isfinite(*cell.number())) throw DocumentError::validationFailed("Invalid formula input.");
    return *cell.number();
  }

  /// Whether the coordinates are of a cell in a numeric column, in a row with all its cells.
  bool isNumeric(Coordinates at) const {
    const auto rows = static_cast<std::int64_t>(spreadsheet_.rows.size());
    const auto columns = static_cast<std::int64_t>(spreadsheet_.columns.size());
    return at.row >= 0 && at.row < rows && at.column >= 0 && at.column < columns &&
           spreadsheet_.rows[static_cast<std::size_t>(at.row)].cells.size() == spreadsheet_.columns.size() &&
           columnAt(at.column).kind == Column::Kind::number;
  }

  // Requires `isNumeric` coordinates.
  const Column& columnAt(std::int64_t column) const {
    return spreadsheet_.columns[static_cast<std::size_t>(column)];
  }
  const Cell& cellAt(Coordinates at) const {
    return spreadsheet_.rows[static_cast<std::size_t>(at.row)].cells[static_cast<std::size_t>(at.column)];
  }

  const ResearchSpreadsheet& spreadsheet_;
  const std::vector<Calculation>& calculations_;
  std::map<Coordinates, std::size_t> calculationAt_;
  std::vector<State> states_;
  std::vector<ResolvedCalculation> resolved_;
  std::vector<Node> waiting_;
  std::size_t nodes_ = 0;
  std::size_t cellReads_ = 0;
};

}  // namespace

std::vector<ResolvedCalculation> ResearchFormulaEvaluator::resolve(const ResearchSpreadsheet& spreadsheet) {
  return Resolution(spreadsheet).run();
}

std::vector<std::vector<Cell>> ResearchFormulaEvaluator::cellsWith(
    const ResearchSpreadsheet& spreadsheet, const std::vector<ResolvedCalculation>& resolved) {
  std::vector<std::vector<Cell>> cells;
  cells.reserve(spreadsheet.rows.size());
  for (const ResearchSpreadsheet::Row& row : spreadsheet.rows)
    cells.push_back(row.cells);
  for (const ResolvedCalculation& calculation : resolved) {
    cells[static_cast<std::size_t>(calculation.row)][static_cast<std::size_t>(calculation.column)] =
        calculation.value ? Cell(*calculation.value) : Cell();
  }
  return cells;
}

}  // namespace zelvo
