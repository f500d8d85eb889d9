#include "DocumentRuntime/Coding/RecordCoding.hpp"

#include <array>

namespace zelvo {
namespace {

constexpr std::array<std::string_view, 2> formatNames = {"docx", "pptx"};
constexpr std::array<std::string_view, 6> kindNames = {"text", "number",  "boolean",
                                                       "date", "missing", "error"};
constexpr std::string_view payloadKey = "_0";

/// The only key of an object. If it is repeated, the last member counts, as for all objects.
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

}  // namespace zelvo
