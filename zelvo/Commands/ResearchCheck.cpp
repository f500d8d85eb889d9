#include "zelvo/ResearchCheckCommand.hpp"

#include <string>
#include <variant>

#include "DocumentRuntime/Research/ResearchFormulaEvaluator.hpp"
#include "DocumentRuntime/Research/ResearchSpreadsheetCoding.hpp"
#include "zelvo/ConfinedWork.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/ResearchInput.hpp"

namespace zelvo {
namespace {

/// The dataset once it has passed, what its cells came to, and how.
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
  result.cells = result.dataset.cellsWith(result.calculations);
  JsonWriter writer;
  encode(writer, result);
  return writer.take() + "\n";
}

}  // namespace

ExitStatus researchCheck(const ResearchCheckArguments& arguments) {
  auto input = readResearchInput(arguments.dataset, arguments.sources);
  if (const auto* complaint = std::get_if<Complaint>(&input)) return complain(*complaint);

  const auto answer =
      runConfined([&] { return checked(*std::get_if<ResearchInput>(&input), arguments.requireChart); });
  if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(*complaint);
  Console::printJson(*std::get_if<std::string>(&answer));
  return ExitStatus::success;
}

}  // namespace zelvo
