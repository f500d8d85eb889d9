#pragma once

#include <cstddef>
#include <string_view>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

/// The JSON forms of the engine's records: objects of their fields, in the order of declaration. Use `toJson`
/// and `fromJson`. Unknown keys are ignored.
namespace zelvo {

// Limits of a table's lists when they are decoded; elements beyond them are dropped, since a request is
// untrusted. Each limit is above that of the input rules, which accept 200 rows and 16 warnings, so that a
// cut table is refused with the same error as a whole one. The input rules accept 8 columns, but the rules of
// a chart, which are checked first, may refer to any column.
inline constexpr std::size_t keptRows = 201;
inline constexpr std::size_t keptWarnings = 17;
inline constexpr std::size_t keptColumns = 1'024;

/// "docx" or "pptx".
std::string_view rawValue(DocumentFormat format);

void encode(JsonWriter& writer, DocumentFormat format);
void decode(JsonValue value, DocumentFormat& format);

/// An object with the kind's name as its one key: {"number":{"_0":"12"}}, {"missing":{}}.
void encode(JsonWriter& writer, const SourceCellValue& value);
void decode(JsonValue value, SourceCellValue& cellValue);

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

}  // namespace zelvo
