#pragma once

#include <cstddef>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/CleaningReport.hpp"

/// The JSON form of a cleaning report: objects of its fields, in the order of declaration. Unknown keys are
/// ignored. A list that is longer than the cleaner can write fails to decode, before memory is allocated for
/// it: a compromised cleaner must not fill its host's memory.
namespace zelvo {

inline constexpr std::size_t maximumReportedSheets = 64;        ///< of a workbook
inline constexpr std::size_t maximumReportedParts = 512;        ///< of an archive
inline constexpr std::size_t maximumReportedDropped = 100;      ///< more than there are kinds
inline constexpr std::size_t maximumReportedChanges = 250'000;  ///< each number format is one

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
  field("parts", limited(dropped.parts, maximumReportedParts));
  field("names", limited(dropped.names, DroppedContent::maximumListedNames));
  field("sheets", limited(dropped.sheets, maximumReportedSheets));
}

template <ConstOrNot<ChangedContent> Record>
void eachField(Record& changed, const auto& field) {
  field("kind", changed.kind);
  field("count", changed.count);
  field("code", changed.code);
  field("sheets", limited(changed.sheets, maximumReportedSheets));
}

template <ConstOrNot<CleaningReport> Record>
void eachField(Record& report, const auto& field) {
  field("sheets", limited(report.sheets, maximumReportedSheets));
  field("dropped", limited(report.dropped, maximumReportedDropped));
  field("changed", limited(report.changed, maximumReportedChanges));
}

}  // namespace zelvo
