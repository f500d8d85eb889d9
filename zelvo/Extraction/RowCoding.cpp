#include "zelvo/Extraction/RowCoding.hpp"

#include "DocumentRuntime/Coding/RecordCoding.hpp"

namespace zelvo {
namespace {

using Kind = SourceCellValue::Kind;

/// Whether the cell's number format changes how its value is displayed.
bool needsFormat(const SourceCell& cell) {
  return cell.value.kind() == Kind::number && cell.numberFormat && *cell.numberFormat != "General";
}

void encodeValue(JsonWriter& writer, const SourceCellValue& value) {
  switch (value.kind()) {
    case Kind::missing:
      return writer.null();
    case Kind::text:
      return writer.string(value.payload());
    case Kind::boolean:
      return writer.boolean(value.isTrue());
    case Kind::number:
      writer.beginArray();
      writer.string(value.payload());
      return writer.endArray();
    case Kind::date:
    case Kind::error:
      return encode(writer, value);
  }
}

void encodeCell(JsonWriter& writer, const SourceCell& cell) {
  const bool isPlain = !needsFormat(cell) && !cell.usesCachedFormulaValue;
  if (isPlain || cell.value.kind() == Kind::missing) return encodeValue(writer, cell.value);
  writer.beginArray();
  encodeValue(writer, cell.value);
  if (needsFormat(cell)) {
    writer.string(*cell.numberFormat);
  } else {
    writer.null();
  }
  writer.boolean(cell.usesCachedFormulaValue);
  writer.endArray();
}

void decodeValue(JsonValue value, SourceCellValue& decoded) {
  switch (value.kind()) {
    case JsonKind::null:
      return;
    case JsonKind::string:
      decoded = SourceCellValue::text(std::string(value.string()));
      return;
    case JsonKind::boolean:
      decoded = SourceCellValue::boolean(value.boolean());
      return;
    case JsonKind::array:
      if (value.array().size() != 1) value.fail("Expected a number's text.");
      decoded = SourceCellValue::number(std::string((*value.array().begin()).string()));
      return;
    default:
      zelvo::decode(value, decoded);
  }
}

}  // namespace

void RowCoding::encode(JsonWriter& writer, std::int64_t row, const std::vector<SourceCell>& cells) {
  writer.beginObject();
  writer.key("row");
  writer.integer(row);
  writer.key("cells");
  writer.beginArray();
  for (const SourceCell& cell : cells)
    encodeCell(writer, cell);
  writer.endArray();
  if (!cells.empty() && cells.front().hidden) {
    writer.key("hidden");
    writer.boolean(true);
  }
  writer.endObject();
}

void RowCoding::decode(JsonValue value, SourceCell& cell) {
  if (value.kind() != JsonKind::array || value.array().size() == 1) return decodeValue(value, cell.value);
  const JsonArray parts = value.array();
  if (parts.size() != 3) value.fail("Expected three parts.");
  auto part = parts.begin();
  decodeValue(*part, cell.value);
  if (const JsonValue format = *++part; !format.isNull()) cell.numberFormat = format.string();
  cell.usesCachedFormulaValue = (*++part).boolean();
}

}  // namespace zelvo
