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

}  // namespace zelvo
