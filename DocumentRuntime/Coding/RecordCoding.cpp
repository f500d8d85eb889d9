#include "DocumentRuntime/Coding/RecordCoding.hpp"

#include <algorithm>
#include <array>

namespace zelvo {
namespace {

constexpr std::array<std::string_view, 2> formatNames = {"docx", "pptx"};
constexpr std::array<std::string_view, 6> kindNames = {"text", "number",  "boolean",
                                                       "date", "missing", "error"};
constexpr std::string_view payloadKey = "_0";

// What is kept of a table's lists when it is decoded: of a request it may be as hostile as any document. Each
// limit is above the one of the rules that the table meets, so that it is refused in the same words as a
// whole one: 200 rows (201 as an extraction gives them) and 16 warnings are accepted. 8 columns are, but a
// chart, whose rules come first, may name any.
constexpr std::size_t keptRows = 201;
constexpr std::size_t keptWarnings = 17;
constexpr std::size_t keptColumns = 1'024;

}  // namespace

template <ConstOrNot<WorksheetInspection> Record>
void eachField(Record& sheet, const auto& field) {
  field("name", sheet.name);
  field("hidden", sheet.hidden);
  field("populatedRange", sheet.populatedRange);
  field("populatedCellCount", sheet.populatedCellCount);
  field("formulaCellCount", sheet.formulaCellCount);
  field("formulasMissingCache", sheet.formulasMissingCache);
  field("hasHiddenRowsOrColumns", sheet.hasHiddenRowsOrColumns);
  field("hasAutoFilter", sheet.hasAutoFilter);
}

template <ConstOrNot<WorkbookInspection> Record>
void eachField(Record& inspection, const auto& field) {
  field("sourceName", inspection.sourceName);
  field("sourceSHA256", inspection.sourceSHA256);
  field("sheets", inspection.sheets);
  field("dateSystem", inspection.dateSystem);
  field("calculationMode", inspection.calculationMode);
  field("warnings", inspection.warnings);
}

template <ConstOrNot<TableSelection> Record>
void eachField(Record& selection, const auto& field) {
  field("sheetName", selection.sheetName);
  field("range", selection.range);
  field("firstRowIsHeader", selection.firstRowIsHeader);
  field("includeHiddenRows", selection.includeHiddenRows);
  field("allowCachedFormulaValues", selection.allowCachedFormulaValues);
}

template <ConstOrNot<SourceCell> Record>
void eachField(Record& cell, const auto& field) {
  field("address", cell.address);
  field("value", cell.value);
  field("formula", cell.formula);
  field("usesCachedFormulaValue", cell.usesCachedFormulaValue);
  field("numberFormat", cell.numberFormat);
  field("hidden", cell.hidden);
}

template <ConstOrNot<SourceTable> Record>
void eachField(Record& table, const auto& field) {
  field("sourceName", table.sourceName);
  field("sourceSHA256", table.sourceSHA256);
  field("sheetName", table.sheetName);
  field("selectedRange", table.selectedRange);
  field("columns", bounded(table.columns, keptColumns));
  field("rows", bounded(table.rows, keptRows, keptColumns));
  field("warnings", bounded(table.warnings, keptWarnings));
  field("headerUsesCachedFormulaValues", table.headerUsesCachedFormulaValues);
}

template <ConstOrNot<ChartSelection> Record>
void eachField(Record& chart, const auto& field) {
  field("categoryColumn", chart.categoryColumn);
  field("valueColumn", chart.valueColumn);
  field("title", chart.title);
}

template <ConstOrNot<DocumentValidation> Record>
void eachField(Record& validation, const auto& field) {
  field("structurallyValid", validation.structurallyValid);
  field("sourceValuesVerified", validation.sourceValuesVerified);
  field("visuallyVerified", validation.visuallyVerified);
  field("validatorVersion", validation.validatorVersion);
  field("warnings", validation.warnings);
  field("outputSHA256", validation.outputSHA256);
}

template <ConstOrNot<GeneratedDocument> Record>
void eachField(Record& document, const auto& field) {
  field("data", document.data);
  field("format", document.format);
  field("sourceSHA256", document.sourceSHA256);
  field("validation", document.validation);
}

namespace {

/// The one key of an object; however often it is repeated, the last member counts, as everywhere.
std::string_view onlyKey(JsonObject object) {
  std::optional<std::string_view> only;
  bool isOnly = true;
  for (const JsonMember member : object) {
    isOnly = isOnly && (!only || *only == member.key);
    only = member.key;
  }
  if (!only || !isOnly) object.fail("Invalid number of keys found, expected one.");
  return *only;
}

}  // namespace

std::string_view rawValue(DocumentFormat format) {
  return formatNames[static_cast<std::size_t>(format)];
}

std::optional<DocumentFormat> documentFormat(std::string_view rawValue) {
  const auto found = std::find(formatNames.begin(), formatNames.end(), rawValue);
  if (found == formatNames.end()) return std::nullopt;
  return static_cast<DocumentFormat>(found - formatNames.begin());
}

void encode(JsonWriter& writer, DocumentFormat format) {
  writer.string(rawValue(format));
}

void decode(JsonValue value, DocumentFormat& format) {
  format = decodeName<DocumentFormat>(value, formatNames);
}

void encode(JsonWriter& writer, const SourceCellValue& value) {
  writer.beginObject();
  writer.key(kindNames[static_cast<std::size_t>(value.kind())]);
  writer.beginObject();
  if (value.kind() == SourceCellValue::Kind::boolean) {
    writer.key(payloadKey);
    writer.boolean(value.isTrue());
  } else if (value.kind() != SourceCellValue::Kind::missing) {
    writer.key(payloadKey);
    writer.string(value.payload());
  }
  writer.endObject();
  writer.endObject();
}

void decode(JsonValue value, SourceCellValue& cellValue) {
  const JsonObject object = value.object();
  const std::string_view name = onlyKey(object);
  const JsonObject payload = object.required(name).object();
  const auto text = [&payload] { return std::string(payload.string(payloadKey)); };
  if (name == "text") {
    cellValue = SourceCellValue::text(text());
  } else if (name == "number") {
    cellValue = SourceCellValue::number(text());
  } else if (name == "boolean") {
    cellValue = SourceCellValue::boolean(payload.boolean(payloadKey));
  } else if (name == "date") {
    cellValue = SourceCellValue::date(text());
  } else if (name == "missing") {
    cellValue = SourceCellValue::missing();
  } else if (name == "error") {
    cellValue = SourceCellValue::error(text());
  } else {
    object.fail("Unknown kind of cell value.");
  }
}

void encode(JsonWriter& writer, const WorksheetInspection& sheet) {
  encodeFields(writer, sheet);
}
void encode(JsonWriter& writer, const WorkbookInspection& inspection) {
  encodeFields(writer, inspection);
}
void encode(JsonWriter& writer, const TableSelection& selection) {
  encodeFields(writer, selection);
}
void encode(JsonWriter& writer, const SourceCell& cell) {
  encodeFields(writer, cell);
}
void encode(JsonWriter& writer, const SourceTable& table) {
  encodeFields(writer, table);
}
void encode(JsonWriter& writer, const ChartSelection& chart) {
  encodeFields(writer, chart);
}
void encode(JsonWriter& writer, const DocumentValidation& validation) {
  encodeFields(writer, validation);
}
void encode(JsonWriter& writer, const GeneratedDocument& document) {
  encodeFields(writer, document);
}

void decode(JsonValue value, WorksheetInspection& sheet) {
  decodeFields(value, sheet);
}
void decode(JsonValue value, WorkbookInspection& inspection) {
  decodeFields(value, inspection);
}
void decode(JsonValue value, TableSelection& selection) {
  decodeFields(value, selection);
}
void decode(JsonValue value, SourceCell& cell) {
  decodeFields(value, cell);
}
void decode(JsonValue value, SourceTable& table) {
  decodeFields(value, table);
}
void decode(JsonValue value, ChartSelection& chart) {
  decodeFields(value, chart);
}
void decode(JsonValue value, DocumentValidation& validation) {
  decodeFields(value, validation);
}
void decode(JsonValue value, GeneratedDocument& document) {
  decodeFields(value, document);
}

}  // namespace zelvo
