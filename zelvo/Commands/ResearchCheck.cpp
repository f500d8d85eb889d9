#include <string>

#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Commands/ResearchInput.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

/// A valid dataset, its cells with computed values, and its calculations.
struct CheckedDataset {
  ResearchSpreadsheet dataset;
  std::vector<std::vector<ResearchSpreadsheet::Cell>> cells;
  std::vector<ResolvedCalculation> calculations;
};

void encode(JsonWriter& writer, const CheckedDataset& checked) {
  const FieldEncoder field(writer);
  writer.beginObject();
  field("dataset", checked.dataset);
  field("cells", checked.cells);
  field("calculations", checked.calculations);
  writer.endObject();
}

std::string checked(ResearchInput& input, bool requiresChart) {
  CheckedDataset result;
  result.dataset =
      ResearchSpreadsheet::decode(input.text, requiresChart, input.allowedSources, input.takeSourceScope());
  result.calculations = ResearchFormulaEvaluator::resolve(result.dataset);
  result.cells = ResearchFormulaEvaluator::cellsWith(result.dataset, result.calculations);
  JsonWriter writer;
  encode(writer, result);
  return writer.take() + "\n";
}

}  // namespace

ExitStatus researchCheck(const ResearchCheckArguments& arguments) {
  auto input = readResearchInput(arguments.dataset, arguments.sources);
  if (!input) return Console::report(input.error());
  const auto encoded = runConfinedChild([&] { return checked(*input, arguments.requireChart); });
  if (!encoded) return Console::report(withHints(encoded.error(), Stage::research));
  Console::printJson(*encoded);
  return ExitStatus::success;
}

}  // namespace zelvo
