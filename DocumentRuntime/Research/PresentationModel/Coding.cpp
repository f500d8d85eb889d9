#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"

#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"

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

void encode(JsonWriter& writer, const ResearchPresentation::ChartReference& reference) {
  encodeFields(writer, reference);
}
void encode(JsonWriter& writer, const ResearchPresentation::Slide& slide) {
  encodeFields(writer, slide);
}
void encode(JsonWriter& writer, const ResearchPresentation::Dataset& dataset) {
  encodeFields(writer, dataset);
}
void encode(JsonWriter& writer, const ResearchPresentation& presentation) {
  encodeFields(writer, presentation);
}

void decode(JsonValue value, ResearchPresentation::ChartReference& reference) {
  decodeFields(value, reference);
}
void decode(JsonValue value, ResearchPresentation::Slide& slide) {
  decodeFields(value, slide);
}
void decode(JsonValue value, ResearchPresentation::Dataset& dataset) {
  decodeFields(value, dataset);
}
void decode(JsonValue value, ResearchPresentation& presentation) {
  decodeFields(value, presentation);
}

}  // namespace zelvo
