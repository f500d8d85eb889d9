#pragma once

#include <optional>
#include <string_view>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

/// The JSON forms of the engine's records: objects of their fields, in the order of declaration. Use them
/// through `toJson` and `fromJson`. Unknown keys are ignored. A table of more than 201 rows, 1,024 columns or
/// 17 warnings, which no operation accepts, loses what is beyond when it is decoded.
namespace zelvo {

/// "docx" or "pptx".
std::string_view rawValue(DocumentFormat format);
std::optional<DocumentFormat> documentFormat(std::string_view rawValue);

void encode(JsonWriter& writer, DocumentFormat format);
void encode(JsonWriter& writer, const WorksheetInspection& sheet);
void encode(JsonWriter& writer, const WorkbookInspection& inspection);
void encode(JsonWriter& writer, const TableSelection& selection);
/// An object with the kind's name as its one key: {"number":{"_0":"12"}}, {"missing":{}}.
void encode(JsonWriter& writer, const SourceCellValue& value);
void encode(JsonWriter& writer, const SourceCell& cell);
void encode(JsonWriter& writer, const SourceTable& table);
void encode(JsonWriter& writer, const ChartSelection& chart);
void encode(JsonWriter& writer, const DocumentValidation& validation);
void encode(JsonWriter& writer, const GeneratedDocument& document);

void decode(JsonValue value, DocumentFormat& format);
void decode(JsonValue value, WorksheetInspection& sheet);
void decode(JsonValue value, WorkbookInspection& inspection);
void decode(JsonValue value, TableSelection& selection);
void decode(JsonValue value, SourceCellValue& cellValue);
void decode(JsonValue value, SourceCell& cell);
void decode(JsonValue value, SourceTable& table);
void decode(JsonValue value, ChartSelection& chart);
void decode(JsonValue value, DocumentValidation& validation);
void decode(JsonValue value, GeneratedDocument& document);

}  // namespace zelvo
