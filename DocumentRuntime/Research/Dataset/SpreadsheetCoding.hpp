#pragma once

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The JSON forms of datasets and what they hold: objects of their fields with sorted keys; a cell is a bare
/// string, number or null. Use them through `fromJson` and `toJson`.
namespace zelvo {

void encode(JsonWriter& writer, const Formula& formula);
void encode(JsonWriter& writer, const Calculation& calculation);
void encode(JsonWriter& writer, const ResolvedCalculation& calculation);
void encode(JsonWriter& writer, const ResearchSpreadsheet::Column& column);
void encode(JsonWriter& writer, const ResearchSpreadsheet::Cell& cell);
void encode(JsonWriter& writer, const ResearchSpreadsheet::Row& row);
void encode(JsonWriter& writer, const ResearchSpreadsheet::Chart& chart);
void encode(JsonWriter& writer, const ResearchSpreadsheet& spreadsheet);

void decode(JsonValue value, Formula& formula);
void decode(JsonValue value, Calculation& calculation);
void decode(JsonValue value, ResearchSpreadsheet::Column& column);
void decode(JsonValue value, ResearchSpreadsheet::Cell& cell);
void decode(JsonValue value, ResearchSpreadsheet::Row& row);
void decode(JsonValue value, ResearchSpreadsheet::Chart& chart);
void decode(JsonValue value, ResearchSpreadsheet& spreadsheet);

}  // namespace zelvo
