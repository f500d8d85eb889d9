#include "DocumentRuntime/Coding/CleaningCoding.hpp"

namespace zelvo {
namespace {

// What the cleaner can list at most: sheets of a workbook, kinds with a number format each, parts of an
// archive.
constexpr std::size_t maximumSheets = 64;
constexpr std::size_t maximumKinds = 100;
constexpr std::size_t maximumChanges = 250'000;
constexpr std::size_t maximumParts = 512;

void requireAtMost(JsonValue value, std::string_view key, std::size_t maximum) {
  const auto list = value.object().optional(key);
  if (list && list->array().size() > maximum) list->fail("Too many elements.");
}

}  // namespace

template <ConstOrNot<CleanedSheet> Record>
void eachField(Record& sheet, const auto& field) {
  field("name", sheet.name);
  field("cells", sheet.cells);
  field("formulas", sheet.formulas);
}

template <ConstOrNot<SheetCount> Record>
void eachField(Record& count, const auto& field) {
  field("sheet", count.sheet);
  field("count", count.count);
}

template <ConstOrNot<DroppedContent> Record>
void eachField(Record& dropped, const auto& field) {
  field("kind", dropped.kind);
  field("count", dropped.count);
  field("parts", dropped.parts);
  field("names", dropped.names);
  field("sheets", dropped.sheets);
}

template <ConstOrNot<ChangedContent> Record>
void eachField(Record& changed, const auto& field) {
  field("kind", changed.kind);
  field("count", changed.count);
  field("code", changed.code);
  field("sheets", changed.sheets);
}

template <ConstOrNot<CleaningReport> Record>
void eachField(Record& report, const auto& field) {
  field("sheets", report.sheets);
  field("dropped", report.dropped);
  field("changed", report.changed);
}

// Found by the lists' templates through their arguments' namespace.
void encode(JsonWriter& writer, const CleanedSheet& sheet);
void encode(JsonWriter& writer, const SheetCount& count);
void encode(JsonWriter& writer, const DroppedContent& dropped);
void encode(JsonWriter& writer, const ChangedContent& changed);
void decode(JsonValue value, CleanedSheet& sheet);
void decode(JsonValue value, SheetCount& count);
void decode(JsonValue value, DroppedContent& dropped);
void decode(JsonValue value, ChangedContent& changed);

void encode(JsonWriter& writer, const CleanedSheet& sheet) {
  encodeFields(writer, sheet);
}
void encode(JsonWriter& writer, const SheetCount& count) {
  encodeFields(writer, count);
}
void encode(JsonWriter& writer, const DroppedContent& dropped) {
  encodeFields(writer, dropped);
}
void encode(JsonWriter& writer, const ChangedContent& changed) {
  encodeFields(writer, changed);
}
void encode(JsonWriter& writer, const CleaningReport& report) {
  encodeFields(writer, report);
}

void decode(JsonValue value, CleanedSheet& sheet) {
  decodeFields(value, sheet);
}
void decode(JsonValue value, SheetCount& count) {
  decodeFields(value, count);
}
void decode(JsonValue value, DroppedContent& dropped) {
  requireAtMost(value, "parts", maximumParts);
  requireAtMost(value, "names", DroppedContent::maximumListedNames);
  requireAtMost(value, "sheets", maximumSheets);
  decodeFields(value, dropped);
}
void decode(JsonValue value, ChangedContent& changed) {
  requireAtMost(value, "sheets", maximumSheets);
  decodeFields(value, changed);
}
void decode(JsonValue value, CleaningReport& report) {
  requireAtMost(value, "sheets", maximumSheets);
  requireAtMost(value, "dropped", maximumKinds);
  requireAtMost(value, "changed", maximumChanges);
  decodeFields(value, report);
}

}  // namespace zelvo
