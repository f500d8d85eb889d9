#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"

namespace zelvo {
namespace {

// Limits in bytes of JSON. A deck may repeat its dataset, in addition to a report; a collection deck may
// repeat several datasets.
constexpr std::size_t maximumBytes = 340'000;
constexpr std::size_t maximumCollectionBytes = 400'000;

ResearchPresentation decodedWithin(std::size_t limit, std::string_view text, const char* detail) {
  if (text.size() > limit) throw DocumentError::resourceLimit(detail);
  return fromJson<ResearchPresentation>(std::string(text));
}

}  // namespace

ResearchPresentation ResearchPresentation::decode(std::string_view text, const AllowedSources& allowedSources,
                                                  std::optional<ResearchSpreadsheet> dataset,
                                                  const std::optional<ResearchSourceScope>& sourceScope) {
  ResearchPresentation deck = decodedWithin(maximumBytes, text, "presentation content");
  if (dataset) deck = deck.attachingDataset(*std::move(dataset));
  deck.validate(allowedSources, sourceScope);
  return deck;
}

ResearchPresentation ResearchPresentation::decode(std::string_view text, const AllowedSources& allowedSources,
                                                  std::vector<Dataset> datasets,
                                                  const std::vector<std::string>& allowedDatasetIDs,
                                                  const std::optional<ResearchSourceScope>& sourceScope) {
  ResearchPresentation deck = decodedWithin(maximumCollectionBytes, text, "presentation collection content")
                                  .attachingDatasets(std::move(datasets), allowedDatasetIDs);
  deck.validate(allowedSources, sourceScope);
  return deck;
}

std::string ResearchPresentation::encoded() const {
  return toJson(*this);
}

std::optional<ResearchPresentation::ChartReference> ResearchPresentation::Slide::namedChart() const {
  if (chartReference) return chartReference;
  if (chartIndex) return ChartReference{.datasetID = {}, .chartIndex = *chartIndex};
  return std::nullopt;
}

std::set<std::string> ResearchPresentation::referencedChartDatasetIDs() const {
  std::set<std::string> ids;
  for (const Slide& slide : slides) {
    if (slide.chartReference) ids.insert(slide.chartReference->datasetID);
  }
  return ids;
}

const ResearchSpreadsheet* ResearchPresentation::chartDataset(const Slide& slide) const {
  const auto chart = slide.namedChart();
  if (!chart) return nullptr;
  const ResearchSpreadsheet* content = nullptr;
  if (!slide.chartReference) {
    if (dataset) content = &*dataset;
  } else if (datasets) {
    const auto found = std::ranges::find(*datasets, chart->datasetID, &Dataset::id);
    if (found != datasets->end()) content = &found->content;
  }
  const bool holdsChart = content != nullptr && chart->chartIndex >= 0 &&
                          chart->chartIndex < static_cast<std::int64_t>(content->charts.size());
  return holdsChart ? content : nullptr;
}

std::vector<ResearchPresentation::ResolvedChartBinding> ResearchPresentation::resolvedChartBindings() const {
  using Binding = ResolvedChartBinding;
  using Cells = std::vector<std::vector<ResearchSpreadsheet::Cell>>;
  std::vector<Binding> bindings;
  std::int64_t partCount = 0;
  for (const Slide& slide : slides) {
    const auto chart = slide.namedChart();
    if (!chart) continue;
    const ResearchSpreadsheet* content = chartDataset(slide);
    if (content == nullptr)
      throw DocumentError::validationFailed("The chart's exact dataset binding is missing.");
    const auto sameChart = std::ranges::find(bindings, *chart, &Binding::reference);
    const auto sameData = std::ranges::find(bindings, content, &Binding::dataset);
    const bool isNewChart = sameChart == bindings.end();
    bindings.push_back({.reference = *chart,
                        .partNumber = isNewChart ? ++partCount : sameChart->partNumber,
                        .dataset = content,
                        .cells = sameData == bindings.end()
                                     ? std::make_shared<const Cells>(content->resolvedCells())
                                     : sameData->cells});
  }
  return bindings;
}

std::vector<ResearchSourceScope::Record> ResearchPresentation::sourceRecords(
    const Slide& slide, const std::optional<ResearchSourceScope>& scope) {
  if (!scope) return {};
  return scope->selectedRecords(slide.sourceIDs.value_or(std::vector<std::string>()), slide.sources);
}

}  // namespace zelvo
