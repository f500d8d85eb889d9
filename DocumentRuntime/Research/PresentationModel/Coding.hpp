#pragma once

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

/// The JSON forms of decks and of the records in them: objects of their fields with sorted keys. Use them
/// through `fromJson` and `toJson`.
namespace zelvo {

// The fields are in the order of their sorted keys, for the canonical encoding.

template <ConstOrNot<ResearchPresentation::ChartReference> Record>
void eachField(Record& reference, const auto& field) {
  field("chartIndex", reference.chartIndex);
  field("datasetID", reference.datasetID);
}

template <ConstOrNot<ResearchPresentation::Slide> Record>
void eachField(Record& slide, const auto& field) {
  field("body", slide.body);
  field("chartIndex", slide.chartIndex);
  field("chartReference", slide.chartReference);
  field("sourceIDs", slide.sourceIDs);
  field("sources", slide.sources);
  field("title", slide.title);
}

template <ConstOrNot<ResearchPresentation::Dataset> Record>
void eachField(Record& dataset, const auto& field) {
  field("content", dataset.content);
  field("id", dataset.id);
}

template <ConstOrNot<ResearchPresentation> Record>
void eachField(Record& presentation, const auto& field) {
  field("dataset", presentation.dataset);
  field("datasets", presentation.datasets);
  field("report", presentation.report);
  field("slides", presentation.slides);
  field("title", presentation.title);
}

}  // namespace zelvo
