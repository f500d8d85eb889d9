#include "zelvo/Extraction/RowCoding.hpp"

#include "DocumentRuntime/Coding/RecordCoding.hpp"

namespace zelvo {
namespace {

/// Whether the cell's number format changes how its value is displayed.
bool needsFormat(const SourceCell& cell) {
  return cell.value.kind() == SourceCellValue::Kind::number && cell.numberFormat &&
         *cell.numberFormat != "General";
}

void encodeCell(JsonWriter& writer, const SourceCell& cell) {
  if (cell.value.kind() == SourceCellValue::Kind::missing) return writer.null();
  if (!needsFormat(cell) && !cell.usesCachedFormulaValue) return encode(writer, cell.value);
  writer.beginArray();
  encode(writer, cell.value);
  if (needsFormat(cell)) {
    writer.string(*cell.numberFormat);
  } else {
    writer.null();
  }
  writer.boolean(cell.usesCachedFormulaValue);
  writer.endArray();
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
  if (value.isNull()) return;
  if (value.kind() != JsonKind::array) return zelvo::decode(value, cell.value);
  const JsonArray parts = value.array();
  if (parts.size() != 3) value.fail("Expected three parts.");
  auto part = parts.begin();
  zelvo::decode(*part, cell.value);
  if (const JsonValue format = *++part; !format.isNull()) cell.numberFormat = format.string();
  cell.usesCachedFormulaValue = (*++part).boolean();
}

}  // namespace zelvo
