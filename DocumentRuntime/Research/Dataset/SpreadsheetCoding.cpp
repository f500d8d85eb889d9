#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"

#include <array>

namespace zelvo {
namespace {

constexpr std::array<std::string_view, 12> operationNames = {"number",   "cell",     "range",   "add",
                                                             "subtract", "multiply", "divide",  "sum",
                                                             "average",  "minimum",  "maximum", "count"};
constexpr std::array<std::string_view, 3> columnKindNames = {"text", "number", "date"};
constexpr std::array<std::string_view, 2> chartKindNames = {"line", "bar"};

template <typename Enumeration>
std::string_view nameOf(Enumeration value, std::span<const std::string_view> names) {
  return names[static_cast<std::size_t>(value)];
}

}  // namespace

void encode(JsonWriter& writer, Formula::Operation operation) {
  writer.string(nameOf(operation, operationNames));
}
void encode(JsonWriter& writer, ResearchSpreadsheet::Column::Kind kind) {
  writer.string(nameOf(kind, columnKindNames));
}
void encode(JsonWriter& writer, ResearchSpreadsheet::Chart::Kind kind) {
  writer.string(nameOf(kind, chartKindNames));
}

void decode(JsonValue value, Formula::Operation& operation) {
  operation = decodeName<Formula::Operation>(value, operationNames);
}
void decode(JsonValue value, ResearchSpreadsheet::Column::Kind& kind) {
  kind = decodeName<ResearchSpreadsheet::Column::Kind>(value, columnKindNames);
}
void decode(JsonValue value, ResearchSpreadsheet::Chart::Kind& kind) {
  kind = decodeName<ResearchSpreadsheet::Chart::Kind>(value, chartKindNames);
}

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

// A resolved calculation is only printed; its keys are in a human-readable order.
template <ConstOrNot<ResolvedCalculation> Record>
void eachField(Record& calculation, const auto& field) {
  field("row", calculation.row);
  field("column", calculation.column);
  field("formula", calculation.formula);
  field("value", calculation.value);
}

void encode(JsonWriter& writer, const ResearchSpreadsheet::Cell& cell) {
  if (cell.text() != nullptr) {
    writer.string(*cell.text());
  } else if (cell.number() != nullptr) {
    writer.number(*cell.number());
  } else {
    writer.null();
  }
}

void decode(JsonValue value, ResearchSpreadsheet::Cell& cell) {
  switch (value.kind()) {
    case JsonKind::null:
      cell = ResearchSpreadsheet::Cell();
      return;
    case JsonKind::number:
      cell = ResearchSpreadsheet::Cell(value.number());
      return;
    case JsonKind::string:
      cell = ResearchSpreadsheet::Cell(std::string(value.string()));
      return;
    case JsonKind::boolean:
    case JsonKind::array:
    case JsonKind::object:
      break;
  }
  value.fail("Expected a string, a number or null.");
}

void encode(JsonWriter& writer, const Formula& formula) {
  encodeFields(writer, formula);
}
void encode(JsonWriter& writer, const Calculation& calculation) {
  encodeFields(writer, calculation);
}
void encode(JsonWriter& writer, const ResolvedCalculation& calculation) {
  encodeFields(writer, calculation);
}
void encode(JsonWriter& writer, const ResearchSpreadsheet::Column& column) {
  encodeFields(writer, column);
}
void encode(JsonWriter& writer, const ResearchSpreadsheet::Row& row) {
  encodeFields(writer, row);
}
void encode(JsonWriter& writer, const ResearchSpreadsheet::Chart& chart) {
  encodeFields(writer, chart);
}
void encode(JsonWriter& writer, const ResearchSpreadsheet& spreadsheet) {
  encodeFields(writer, spreadsheet);
}

void decode(JsonValue value, Formula& formula) {
  decodeFields(value, formula);
}
void decode(JsonValue value, Calculation& calculation) {
  decodeFields(value, calculation);
}
void decode(JsonValue value, ResearchSpreadsheet::Column& column) {
  decodeFields(value, column);
}
void decode(JsonValue value, ResearchSpreadsheet::Row& row) {
  decodeFields(value, row);
}
void decode(JsonValue value, ResearchSpreadsheet::Chart& chart) {
  decodeFields(value, chart);
}
void decode(JsonValue value, ResearchSpreadsheet& spreadsheet) {
  decodeFields(value, spreadsheet);
}

}  // namespace zelvo
