// The rules of a deck, in the order in which they are checked.

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Rules.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;
using Dataset = ResearchPresentation::Dataset;
using Row = ResearchSpreadsheet::Row;
using Scope = ResearchSourceScope;
using Slide = ResearchPresentation::Slide;

// Limits of a readable slide. Lengths are in characters.
constexpr std::size_t maximumTitleLength = 80;
constexpr std::size_t maximumReportLength = 30'000;
constexpr std::size_t minimumSlides = 3;
constexpr std::size_t maximumSlides = 16;
constexpr std::size_t maximumPoints = 4;
constexpr std::size_t maximumPointLength = 160;
constexpr std::size_t maximumCategoryLength = 60;  // of a shared dataset's chart
constexpr std::size_t maximumPeriods = 40;         // rows of a chart's dataset: all of them are drawn

/// The most URLs, and likewise identifiers, that fit below a slide's points.
constexpr std::size_t maximumSourcesPerSlide = 3;
/// The limit of a URL, which is ASCII: one byte per character.
constexpr std::size_t maximumURLBytes = 2000;

/// The limit of chart references of a deck, each of which has one chart part.
constexpr std::size_t maximumChartReferences = 4;

/// Whether the byte is a control character that a slide cannot show. In UTF-8 a byte below 0x20 is a whole
/// scalar.
bool isForbiddenControl(char c) {
  return c >= '\0' && c < ' ' && c != '\t' && c != '\n' && c != '\r';
}

bool isText(std::string_view text, std::size_t maximumLength) {
  return !Unicode::trimmed(text).empty() && !Unicode::exceeds(text, maximumLength) &&
         std::ranges::none_of(text, isForbiddenControl);
}

void checkOutline(const ResearchPresentation& deck) {
  require(isText(deck.title, maximumTitleLength) && isText(deck.report, maximumReportLength) &&
              deck.slides.size() >= minimumSlides && deck.slides.size() <= maximumSlides,
          "Use a short title, a report and 3–16 slides.");
}

void checkDatasetCounts(const ResearchPresentation& deck) {
  const bool hasBothForms = deck.dataset && deck.datasets;
  const bool hasGoodIdentities = !deck.datasets || hasBoundedIdentities(*deck.datasets);
  std::set<std::pair<std::string_view, std::int64_t>> references;
  for (const Slide& slide : deck.slides) {
    if (slide.chartReference)
      references.emplace(slide.chartReference->datasetID, slide.chartReference->chartIndex);
  }
  require(!hasBothForms && hasGoodIdentities && references.size() <= maximumChartReferences,
          "Use at most four unique canonical datasets and four chart references.");
}

void checkDatasetContents(const ResearchPresentation& deck, const AllowedSources& allowedSources,
                          const std::optional<Scope>& scope) {
  if (deck.dataset) deck.dataset->validate(/*requiresChart=*/false, allowedSources, scope);
  if (!deck.datasets) return;
  for (const Dataset& dataset : *deck.datasets)
    dataset.content.validate(/*requiresChart=*/false, allowedSources, scope);
}

void checkContent(const Slide& slide) {
  const bool hasGoodPoints = !slide.body.empty() && slide.body.size() <= maximumPoints &&
                             std::ranges::all_of(slide.body, [](const std::string& point) {
                               return isText(point, maximumPointLength);
                             });
  const bool hasGoodIDs =
      !slide.sourceIDs || (slide.sourceIDs->size() <= maximumSourcesPerSlide &&
                           std::ranges::all_of(*slide.sourceIDs, SourceReferences::isIdentifier));
  require(isText(slide.title, maximumTitleLength) && hasGoodPoints &&
              slide.sources.size() <= maximumSourcesPerSlide && hasGoodIDs,
          "Each slide needs a short heading and 1–4 concise points.");
}

void checkSingleBinding(const Slide& slide) {
  require(!slide.chartIndex || !slide.chartReference, "Use one explicit chart binding per slide.");
}

/// A list of URLs allows no identifiers. Without a list and a scope, everything is allowed.
void checkEvidence(const Slide& slide, const AllowedSources& allowedSources,
                   const std::optional<Scope>& scope) {
  if (scope) {
    scope->validate(slide.sourceIDs, slide.sources, /*requiresEvidence=*/false);
    return;
  }
  const bool citesIDs = slide.sourceIDs && !slide.sourceIDs->empty();
  require(!citesIDs || !allowedSources, RefusalDetail::sourceIDs);
}

void checkReferencedChart(const Slide& slide, bool isCover, const ResearchSpreadsheet* dataset) {
  require(!isCover && dataset != nullptr && dataset->rows.size() <= maximumPeriods && slide.body.size() == 1,
          RefusalDetail::referencedChart);
}

/// Checks texts only: the text of a number is always shorter than the limit.
bool hasShortCategories(const ResearchSpreadsheet& dataset, std::int64_t chartIndex) {
  const auto column =
      static_cast<std::size_t>(dataset.charts[static_cast<std::size_t>(chartIndex)].categoryColumn);
  return std::ranges::none_of(dataset.rows, [column](const Row& row) {
    const std::string* text = row.cells[column].text();
    return text != nullptr && Unicode::exceeds(*text, maximumCategoryLength);
  });
}

void checkSharedChart(const Slide& slide, bool isCover, const ResearchSpreadsheet* dataset) {
  require(!isCover && dataset != nullptr && dataset->rows.size() <= maximumPeriods &&
              slide.body.size() == 1 && hasShortCategories(*dataset, *slide.chartIndex),
          RefusalDetail::sharedChart);
}

void checkSources(const Slide& slide, const AllowedSources& allowedSources) {
  const bool areReturned = std::ranges::all_of(slide.sources, [&](const std::string& source) {
    return source.size() <= maximumURLBytes && SourceReferences::isWebURL(source) &&
           (!allowedSources || std::ranges::find(*allowedSources, source) != allowedSources->end());
  });
  require(areReturned, RefusalDetail::slideSources);
}

}  // namespace

void ResearchPresentation::validate(const AllowedSources& allowedSources,
                                    const std::optional<ResearchSourceScope>& sourceScope) const {
  checkOutline(*this);
  checkDatasetCounts(*this);
  checkDatasetContents(*this, allowedSources, sourceScope);
  for (const Slide& slide : slides) {
    const bool isCover = &slide == &slides.front();
    checkContent(slide);
    checkSingleBinding(slide);
    checkEvidence(slide, allowedSources, sourceScope);
    if (slide.chartReference) checkReferencedChart(slide, isCover, chartDataset(slide));
    if (slide.chartIndex) checkSharedChart(slide, isCover, chartDataset(slide));
    checkSources(slide, allowedSources);
  }
}

}  // namespace zelvo
