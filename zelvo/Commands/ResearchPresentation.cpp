#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Research/PresentationModel/HostDatasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/DocumentOutput.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Commands/ResearchInput.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

using Dataset = ResearchPresentation::Dataset;

struct DeckInput {
  ResearchInput deck;
  HostFile data;  ///< the dataset or datasets; empty if there are none
};

Result<DeckInput> readDeckInput(const ResearchPresentationArguments& arguments) {
  auto deck = readResearchInput(arguments.deck, arguments.sources);
  if (!deck) return deck.error();
  DeckInput input = {*std::move(deck), {}};

  const std::string& file = arguments.dataset.empty() ? arguments.datasets : arguments.dataset;
  if (file.empty()) return input;
  auto data = readHostFile(file);
  if (!data) return data.error();
  input.data = *std::move(data);
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

/// A valid deck with its data, and the scope of its sources.
struct Deck {
  ResearchPresentation presentation;
  std::optional<ResearchSourceScope> sourceScope;
};

/// Moves the texts of the host's files out of the input.
Deck decoded(DeckInput& input, const ResearchPresentationArguments& arguments) {
  Deck deck;
  deck.sourceScope = input.deck.takeSourceScope();
  const auto& [text, allowedSources, scopeFile] = input.deck;
  if (!arguments.datasets.empty()) {
    auto datasets = input.data.decoded(hostDatasetsFromJson);
    const auto allowed = allowedIDs(arguments, datasets);
    deck.presentation =
        ResearchPresentation::decode(text, allowedSources, std::move(datasets), allowed, deck.sourceScope);
    return deck;
  }
  std::optional<ResearchSpreadsheet> dataset;
  if (!arguments.dataset.empty()) dataset = input.data.decoded(hostDatasetFromJson);
  deck.presentation =
      ResearchPresentation::decode(text, allowedSources, std::move(dataset), deck.sourceScope);
  return deck;
}

ExitStatus printEncoding(DeckInput& input, const ResearchPresentationArguments& arguments) {
  const auto encoded =
      runConfinedChild([&] { return decoded(input, arguments).presentation.encoded() + "\n"; });
  if (!encoded) return Console::report(withHints(encoded.error(), Stage::research));
  Console::printJson(*encoded);
  return ExitStatus::success;
}

ExitStatus writePresentation(DeckInput& input, const ResearchPresentationArguments& arguments) {
  return DocumentOutput::writeAuthored(arguments.output, "PowerPoint presentation", [&] {
    const Deck deck = decoded(input, arguments);
    return renderPresentation(deck.presentation, PresentationRendererVersion::newest, deck.sourceScope);
  });
}

}  // namespace

ExitStatus researchPresentation(const ResearchPresentationArguments& arguments) {
  const std::vector<std::string> inputs = {arguments.deck, arguments.dataset, arguments.datasets,
                                           arguments.sources.scopeFile};
  if (const Failure failure = DocumentOutput::check(arguments.output, inputs))
    return Console::report(*failure);
  auto input = readDeckInput(arguments);
  if (!input) return Console::report(input.error());
  return arguments.output.file.empty() ? printEncoding(*input, arguments)
                                       : writePresentation(*input, arguments);
}

}  // namespace zelvo
