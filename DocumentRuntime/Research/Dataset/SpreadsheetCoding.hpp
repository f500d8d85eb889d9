#pragma once

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The JSON forms of datasets and of the records in them: objects of their fields with sorted keys; a cell is
/// a bare string, number or null. Use them through `fromJson` and `toJson`.
namespace zelvo {

void encode(JsonWriter& writer, Formula::Operation operation);
void encode(JsonWriter& writer, ResearchSpreadsheet::Column::Kind kind);
void encode(JsonWriter& writer, ResearchSpreadsheet::Chart::Kind kind);
void encode(JsonWriter& writer, const ResearchSpreadsheet::Cell& cell);
void decode(JsonValue value, Formula::Operation& operation);
void decode(JsonValue value, ResearchSpreadsheet::Column::Kind& kind);
void decode(JsonValue value, ResearchSpreadsheet::Chart::Kind& kind);
void decode(JsonValue value, ResearchSpreadsheet::Cell& cell);

// The fields are in the order of their sorted keys, for the canonical encoding.

template <ConstOrNot<Formula> Record>
void eachField(Record& formula, const auto& field) {
  field("arguments", formula.arguments);
  field("column", formula.column);
  field("endColumn", formula.endColumn);
  field("endRow", formula.endRow);
  field("op", formula.op);
  field("row", formula.row);
  field("value", formula.value);
}

template <ConstOrNot<Calculation> Record>
void eachField(Record& calculation, const auto& field) {
  field("column", calculation.column);
  field("formula", calculation.formula);
  field("row", calculation.row);
}

template <ConstOrNot<ResearchSpreadsheet::Column> Record>
void eachField(Record& column, const auto& field) {
  field("kind", column.kind);
  field("name", column.name);
  field("unit", column.unit);
}

template <ConstOrNot<ResearchSpreadsheet::Row> Record>
void eachField(Record& row, const auto& field) {
  field("cells", row.cells);
  field("sourceIDs", row.sourceIDs);
  field("sources", row.sources);
}

template <ConstOrNot<ResearchSpreadsheet::Chart> Record>
void eachField(Record& chart, const auto& field) {
  field("categoryColumn", chart.categoryColumn);
  field("kind", chart.kind);
  field("title", chart.title);
  field("valueColumns", chart.valueColumns);
}

template <ConstOrNot<ResearchSpreadsheet> Record>
void eachField(Record& spreadsheet, const auto& field) {
  field("calculations", spreadsheet.calculations);
  field("charts", spreadsheet.charts);
  field("columns", spreadsheet.columns);
  field("report", spreadsheet.report);
  field("rows", spreadsheet.rows);
}

// A resolved calculation is only printed; its keys are in an order for reading.
template <ConstOrNot<ResolvedCalculation> Record>
void eachField(Record& calculation, const auto& field) {
  field("row", calculation.row);
  field("column", calculation.column);
  field("formula", calculation.formula);
  field("value", calculation.value);
}

}  // namespace zelvo
