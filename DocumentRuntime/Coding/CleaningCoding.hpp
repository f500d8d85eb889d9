#pragma once

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/CleaningReport.hpp"

/// The JSON form of a cleaning report: objects of its fields, in the order of declaration. Unknown keys are
/// ignored. A list that is longer than any report's is refused, before room is made for it.
namespace zelvo {

void encode(JsonWriter& writer, const CleaningReport& report);
void decode(JsonValue value, CleaningReport& report);

}  // namespace zelvo
