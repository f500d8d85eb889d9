#pragma once

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

/// The JSON forms of decks and what they hold: objects of their fields with sorted keys. Use them through
/// `fromJson` and `toJson`.
namespace zelvo {

void encode(JsonWriter& writer, const ResearchPresentation::ChartReference& reference);
void encode(JsonWriter& writer, const ResearchPresentation::Slide& slide);
void encode(JsonWriter& writer, const ResearchPresentation::Dataset& dataset);
void encode(JsonWriter& writer, const ResearchPresentation& presentation);

void decode(JsonValue value, ResearchPresentation::ChartReference& reference);
void decode(JsonValue value, ResearchPresentation::Slide& slide);
void decode(JsonValue value, ResearchPresentation::Dataset& dataset);
void decode(JsonValue value, ResearchPresentation& presentation);

}  // namespace zelvo
