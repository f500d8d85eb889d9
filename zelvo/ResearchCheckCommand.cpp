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

std::string checked(const std::string& text, bool requiresChart, const SourceInput& sources) {
  CheckedDataset result;
  result.dataset = ResearchSpreadsheet::decode(text, requiresChart, sources.allowedSources, sources.scope());
  result.cells = result.dataset.resolvedCells();
  result.calculations = ResearchFormulaEvaluator::resolve(result.dataset);
  JsonWriter writer;
  encode(writer, result);
  return writer.take() + "\n";
}

ExitStatus complain(const Complaint& complaint) {
  Console::complain(complaint.message);
  return complaint.status;
}

}  // namespace

ExitStatus researchCheck(const ResearchCheckArguments& arguments) {
  const auto text = readText(arguments.dataset);
  if (const auto* complaint = std::get_if<Complaint>(&text)) return complain(*complaint);
  const auto sources = readSources(arguments.sources);
  if (const auto* complaint = std::get_if<Complaint>(&sources)) return complain(*complaint);

  const auto answer = runConfined([&] {
    return checked(*std::get_if<std::string>(&text), arguments.requireChart,
                   *std::get_if<SourceInput>(&sources));
  });
  if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(*complaint);
  Console::print(*std::get_if<std::string>(&answer));
  return ExitStatus::success;
}

}  // namespace zelvo
