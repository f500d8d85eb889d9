#pragma once

#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Formula.hpp"

namespace zelvo {

/// The result of evaluating a formula node: its values, of which a missing one is a blank input, and its
/// text.
struct EvaluatedFormula {
  std::vector<std::optional<double>> values;
  std::string text;
};

/// Applies an arithmetic or aggregate operation to its arguments. A missing operand and a division by zero
/// result in no value, never zero; the formula text has the same effect in a spreadsheet. The value may be
/// infinite or NaN. Throws `DocumentError` validationFailed for arithmetic on anything but two scalars.
EvaluatedFormula applyOperation(Formula::Operation operation, const std::vector<EvaluatedFormula>& arguments);

}  // namespace zelvo
