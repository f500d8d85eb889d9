#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* slideSources = "Slide sources must be returned research URLs.";
inline constexpr const char* sourceIDs = "Source IDs require the trusted local/public provenance scope.";
inline constexpr const char* datasetOutsideScope =
    "The presentation references a dataset outside its declared result scope.";
inline constexpr const char* missingDataset = "A canonical dataset is missing.";
inline constexpr const char* sharedChart =
    "A chart slide needs an attached dataset, a valid chart, at most 40 periods and one concise insight.";
inline constexpr const char* referencedChart =
    "A chart slide needs its exact canonical dataset and chart, at most 40 periods and one insight.";

}  // namespace RefusalDetail

/// A slide's reference to a chart of a dataset.
struct ResearchChartReference {
  std::string datasetID;        ///< empty for a deck's shared dataset; no identifier in a collection is
  std::int64_t chartIndex = 0;  ///< zero-based

  bool operator==(const ResearchChartReference&) const = default;
};

/// A short research deck, as a language model describes it: slides of a few points that cite their evidence,
/// some with a chart. Nothing in it is trusted before `validate`.
///
/// Charts come from one shared dataset (`dataset`, slides name a chart by `chartIndex`) or from a collection
/// (`datasets`, slides name dataset and chart by `chartReference`). Datasets belong to the host, which
/// attaches them; a model may repeat them but must not add or change one.
///
/// Texts are valid UTF-8; the JSON reader checks that.
struct ResearchPresentation {
  /// The limit of a collection.
  static constexpr std::size_t maximumDatasets = 4;

  using ChartReference = ResearchChartReference;

  struct Slide {
    std::string title;
    std::vector<std::string> body;                      ///< the points
    std::vector<std::string> sources;                   ///< URLs
    std::optional<std::vector<std::string>> sourceIDs;  ///< identifiers of evidence in the host's scope
    std::optional<std::int64_t> chartIndex;             ///< into the shared dataset's charts
    std::optional<ChartReference> chartReference;       ///< into the collection

    /// The chart that the slide refers to, in either form. Returns nullopt for a slide of points.
    std::optional<ChartReference> namedChart() const;

    bool operator==(const Slide&) const = default;
  };

  /// One canonical dataset of a collection.
  struct Dataset {
    std::string id;
    ResearchSpreadsheet content;

    bool operator==(const Dataset&) const = default;
  };

  /// The data of a chart slide. Valid while the deck lives and is not changed: it refers to the deck's
  /// dataset, and slides that show the same dataset share its cells.
  struct ResolvedChartBinding {
    ChartReference reference;
    /// The chart part's number, from 1 in the order of first use. Slides that refer to the same chart share
    /// it. A valid deck refers to at most four charts: a collection deck by a rule of its own, any other
    /// because its dataset has at most four.
    std::int64_t partNumber = 0;
    const ResearchSpreadsheet* dataset = nullptr;
    /// The dataset's rows with their calculated values, one cell per column of the dataset.
    std::shared_ptr<const std::vector<std::vector<ResearchSpreadsheet::Cell>>> cells;

    const ResearchSpreadsheet::Chart& chart() const {
      return dataset->charts[static_cast<std::size_t>(reference.chartIndex)];
    }
  };

  std::string title;
  std::string report;         ///< the text that the deck summarizes
  std::vector<Slide> slides;  ///< the first is the cover
  std::optional<ResearchSpreadsheet> dataset;
  std::optional<std::vector<Dataset>> datasets;

  /// Decodes and validates a deck, with the host's shared dataset attached, if any; otherwise a dataset in
  /// the text is validated like any other. Throws `DocumentError` resourceLimit "presentation content",
  /// `DecodingError`, and what `attachingDataset` and `validate` throw.
  static ResearchPresentation decode(std::string_view text, const AllowedSources& allowedSources,
                                     std::optional<ResearchSpreadsheet> dataset,
                                     const std::optional<ResearchSourceScope>& sourceScope);

  /// The same with a collection, of which the deck may show the datasets of `allowedDatasetIDs`. The error of
  /// its larger limit is resourceLimit "presentation collection content".
  static ResearchPresentation decode(std::string_view text, const AllowedSources& allowedSources,
                                     std::vector<Dataset> datasets,
                                     const std::vector<std::string>& allowedDatasetIDs,
                                     const std::optional<ResearchSourceScope>& sourceScope);

  /// A copy with the host's dataset. Throws `DocumentError` validationFailed if the deck has another dataset.
  ResearchPresentation attachingDataset(ResearchSpreadsheet canonical) const;

  /// A copy with all of the host's datasets, shown or not. Throws `DocumentError` validationFailed if the
  /// deck is not a collection deck, refers to a dataset that is not allowed, or has one that is not the
  /// host's.
  ResearchPresentation attachingDatasets(std::vector<Dataset> canonical,
                                         const std::vector<std::string>& allowedDatasetIDs) const;

  /// Throws `DocumentError` for the first rule that the deck breaks. With a scope and a list, slides must
  /// satisfy both, and rows of datasets the scope. With neither, references are checked for their form alone.
  void validate(const AllowedSources& allowedSources,
                const std::optional<ResearchSourceScope>& sourceScope) const;

  /// The identifiers of the datasets in the slides' chart references.
  std::set<std::string> referencedChartDatasetIDs() const;

  /// The dataset of a slide's chart. Null if the slide has no chart, or one that does not exist.
  const ResearchSpreadsheet* chartDataset(const Slide& slide) const;

  /// One binding per chart slide, in slide order. Throws `DocumentError` validationFailed for a chart that
  /// does not exist, and what `resolvedCells` throws; neither happens with a valid deck.
  std::vector<ResolvedChartBinding> resolvedChartBindings() const;

  /// The provenance records of a slide's references; empty without a scope.
  static std::vector<ResearchSourceScope::Record> sourceRecords(
      const Slide& slide, const std::optional<ResearchSourceScope>& scope);

  /// The canonical JSON: compact, keys sorted, absent fields left out. Equal decks have equal bytes.
  std::string encoded() const;

  bool operator==(const ResearchPresentation&) const = default;
};

/// Whether a collection has at most four datasets, with distinct identifiers.
bool hasBoundedIdentities(const std::vector<ResearchPresentation::Dataset>& datasets);

}  // namespace zelvo
