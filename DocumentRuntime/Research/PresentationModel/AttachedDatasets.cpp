// Attaches the host's datasets to a deck. A model's deck may repeat them, but must not add or change one.

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Rules.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;
using Dataset = ResearchPresentation::Dataset;
using Slide = ResearchPresentation::Slide;

bool hasOnlyReferences(const ResearchPresentation& deck) {
  return !deck.dataset &&
         std::ranges::none_of(deck.slides, [](const Slide& slide) { return slide.chartIndex.has_value(); });
}

bool areBoundedIdentities(const std::vector<std::string>& ids) {
  return ids.size() <= ResearchPresentation::maximumDatasets &&
         SourceReferences::areDistinctIdentifiers({ids.begin(), ids.end()});
}

std::vector<std::string> identitiesOf(const std::vector<Dataset>& datasets) {
  std::vector<std::string> ids;
  ids.reserve(datasets.size());
  for (const Dataset& dataset : datasets)
    ids.push_back(dataset.id);
  return ids;
}

bool areAmong(const std::vector<std::string>& ids, const std::set<std::string>& wanted) {
  return std::ranges::all_of(
      wanted, [&ids](const std::string& id) { return std::ranges::find(ids, id) != ids.end(); });
}

bool repeatsOnly(const ResearchPresentation& deck, const std::vector<Dataset>& canonical) {
  return !deck.datasets || std::ranges::all_of(*deck.datasets, [&canonical](const Dataset& dataset) {
    return std::ranges::find(canonical, dataset) != canonical.end();
  });
}

}  // namespace

bool hasBoundedIdentities(const std::vector<Dataset>& datasets) {
  return areBoundedIdentities(identitiesOf(datasets));
}

ResearchPresentation ResearchPresentation::attachingDataset(ResearchSpreadsheet canonical) const {
  require(!dataset || *dataset == canonical, "The presentation cannot replace the shared source dataset.");
  ResearchPresentation attached = *this;
  attached.dataset = std::move(canonical);
  return attached;
}

ResearchPresentation ResearchPresentation::attachingDatasets(
    std::vector<Dataset> canonical, const std::vector<std::string>& allowedDatasetIDs) const {
  require(
      hasOnlyReferences(*this) && hasBoundedIdentities(canonical) && areBoundedIdentities(allowedDatasetIDs),
      "A collection presentation needs unique, bounded dataset identities and explicit chart references.");
  const std::set<std::string> wanted = referencedChartDatasetIDs();
  require(areAmong(allowedDatasetIDs, wanted), RefusalDetail::datasetOutsideScope);
  require(repeatsOnly(*this, canonical), "Model content cannot add or change canonical dataset records.");
  require(areAmong(identitiesOf(canonical), wanted), RefusalDetail::missingDataset);
  ResearchPresentation attached = *this;
  attached.datasets = std::move(canonical);
  return attached;
}

}  // namespace zelvo
