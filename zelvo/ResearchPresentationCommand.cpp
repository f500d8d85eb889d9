#include "zelvo/ResearchPresentationCommand.hpp"

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "DocumentRuntime/Research/PresentationRendererVersion.hpp"
#include "DocumentRuntime/Research/ResearchPresentationCoding.hpp"
#include "DocumentRuntime/Research/ResearchSpreadsheetCoding.hpp"
#include "zelvo/ConfinedWork.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/DocumentOutput.hpp"
#include "zelvo/ResearchInput.hpp"

namespace zelvo {
namespace {

using Dataset = ResearchPresentation::Dataset;

struct DeckInput {
  ResearchInput deck;
  std::string hostData;  ///< the dataset or datasets that came beside it
};

std::variant<DeckInput, Complaint> readDeckInput(const ResearchPresentationArguments& arguments) {
  auto deck = readResearchInput(arguments.deck, arguments.sources);
  if (auto* complaint = std::get_if<Complaint>(&deck)) return std::move(*complaint);
  DeckInput input = {std::move(*std::get_if<ResearchInput>(&deck)), {}};

  const std::string& file = arguments.dataset.empty() ? arguments.datasets : arguments.dataset;
  if (file.empty()) return input;
  auto data = readText(file);
  if (auto* complaint = std::get_if<Complaint>(&data)) return std::move(*complaint);
  input.hostData = std::move(*std::get_if<std::string>(&data));
  return input;
}

std::vector<std::string> allowedIDs(const ResearchPresentationArguments& arguments,
                                    const std::vector<Dataset>& datasets) {
  if (!arguments.allowedDatasets.empty()) return arguments.allowedDatasets;
  std::vector<std::string> all;
  all.reserve(datasets.size());
  for (const Dataset& dataset : datasets)
    all.push_back(dataset.id);
  return all;
}

/// A valid deck with its data, and what its sources are known by.
struct Deck {
  ResearchPresentation presentation;
  std::optional<ResearchSourceScope> sourceScope;
};

Deck decoded(const DeckInput& input, const ResearchPresentationArguments& arguments) {
  const auto& [text, allowedSources, scopeText] = input.deck;
  const auto scope = input.deck.sourceScope();
  if (!arguments.datasets.empty()) {
    const auto datasets = fromJson<std::vector<Dataset>>(input.hostData);
    return {
        ResearchPresentation::decode(text, allowedSources, datasets, allowedIDs(arguments, datasets), scope),
        scope};
  }
  std::optional<ResearchSpreadsheet> dataset;
  if (!arguments.dataset.empty()) dataset = fromJson<ResearchSpreadsheet>(input.hostData);
  return {ResearchPresentation::decode(text, allowedSources, dataset, scope), scope};
}

ExitStatus printEncoding(const DeckInput& input, const ResearchPresentationArguments& arguments) {
  const auto answer = runConfined([&] { return decoded(input, arguments).presentation.encoded() + "\n"; });
  if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(*complaint);
  Console::printJson(*std::get_if<std::string>(&answer));
  return ExitStatus::success;
}

ExitStatus deliver(const DeckInput& input, const ResearchPresentationArguments& arguments) {
  return DocumentOutput::deliverAuthored(arguments.output, "PowerPoint presentation", [&] {
    const Deck deck = decoded(input, arguments);
    return ResearchPresentation::make(deck.presentation, PresentationRendererVersion::newest,
                                      deck.sourceScope);
  });
}

}  // namespace

ExitStatus researchPresentation(const ResearchPresentationArguments& arguments) {
  if (const auto complaint = DocumentOutput::check(arguments.output)) return complain(*complaint);
  const auto read = readDeckInput(arguments);
  if (const auto* complaint = std::get_if<Complaint>(&read)) return complain(*complaint);
  const DeckInput& input = *std::get_if<DeckInput>(&read);
  return arguments.output.empty() ? printEncoding(input, arguments) : deliver(input, arguments);
}

}  // namespace zelvo
