#include "DocumentRuntime/Research/Dataset/FormulaOperations.hpp"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

using enum Formula::Operation;

[[noreturn]] void failUnsupported() {
  throw DocumentError::validationFailed("Unsupported formula operation.");
}

char operatorSign(Formula::Operation operation) {
  switch (operation) {
    case add:
      return '+';
    case subtract:
      return '-';
    case multiply:
      return '*';
    case divide:
      return '/';
    default:
      failUnsupported();
  }
}

std::optional<double> combined(Formula::Operation operation, std::optional<double> a,
                               std::optional<double> b) {
  if (!a || !b) return std::nullopt;
  switch (operation) {
    case add:
      return *a + *b;
    case subtract:
      return *a - *b;
    case multiply:
      return *a * *b;
    case divide:
      return *b == 0 ? std::nullopt : std::optional(*a / *b);
    default:
      failUnsupported();
  }
}

EvaluatedFormula arithmetic(Formula::Operation operation, const std::vector<EvaluatedFormula>& arguments) {
  const auto isScalar = [](const EvaluatedFormula& argument) { return argument.values.size() == 1; };
  if (arguments.size() != 2 || !std::ranges::all_of(arguments, isScalar))
    throw DocumentError::validationFailed("Arithmetic requires exactly two scalar operands.");
  const EvaluatedFormula& a = arguments[0];
  const EvaluatedFormula& b = arguments[1];

  std::string text = "IF(COUNT(" + a.text + ',' + b.text + ")=2,IFERROR((";
  text += a.text + operatorSign(operation) + b.text + R"(),""),""))";
  return {{combined(operation, a.values[0], b.values[0])}, std::move(text)};
}

std::vector<double> presentNumbers(const std::vector<EvaluatedFormula>& arguments) {
  std::vector<double> numbers;
  for (const EvaluatedFormula& argument : arguments) {
    for (const auto& value : argument.values) {
      if (value) numbers.push_back(*value);
    }
  }
  return numbers;
}

std::string joinedTexts(const std::vector<EvaluatedFormula>& arguments) {
  std::string joined;
  for (const EvaluatedFormula& argument : arguments)
    joined.append(joined.empty() ? "" : ",").append(argument.text);
  return joined;
}

/// Adds without compensation, in the order of the arguments and of a range's rows.
double sumOf(const std::vector<double>& numbers) {
  return std::accumulate(numbers.begin(), numbers.end(), 0.0);
}

double aggregated(Formula::Operation operation, const std::vector<double>& numbers) {
  switch (operation) {
    case sum:
      return sumOf(numbers);
    case average:
      return sumOf(numbers) / static_cast<double>(numbers.size());
    case minimum:
      return *std::min_element(numbers.begin(), numbers.end());
    case maximum:
      return *std::max_element(numbers.begin(), numbers.end());
    default:
      failUnsupported();
  }
}

std::string_view functionName(Formula::Operation operation) {
  switch (operation) {
    case sum:
      return "SUM";
    case average:
      return "AVERAGE";
    case minimum:
      return "MIN";
    case maximum:
      return "MAX";
    default:
      failUnsupported();
  }
}

EvaluatedFormula aggregate(Formula::Operation operation, const std::vector<EvaluatedFormula>& arguments) {
  const std::vector<double> numbers = presentNumbers(arguments);
  std::optional<double> value;
  if (!numbers.empty()) value = aggregated(operation, numbers);

  const std::string texts = joinedTexts(arguments);
  std::string text = "IF(COUNT(" + texts + ")=0,\"\",";
  text.append(functionName(operation)).append("(").append(texts).append("))");
  return {{value}, std::move(text)};
}

}  // namespace

EvaluatedFormula applyOperation(Formula::Operation operation,
                                const std::vector<EvaluatedFormula>& arguments) {
  switch (operation) {
    case add:
    case subtract:
    case multiply:
    case divide:
      return arithmetic(operation, arguments);
    case sum:
    case average:
    case minimum:
    case maximum:
      return aggregate(operation, arguments);
    case count:
      return {{static_cast<double>(presentNumbers(arguments).size())},
              "COUNT(" + joinedTexts(arguments) + ')'};
    case number:
    case cell:
    case range:
      break;
  }
  failUnsupported();
}

}  // namespace zelvo
