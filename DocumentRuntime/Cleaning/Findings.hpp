#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/CleaningReport.hpp"

namespace zelvo::Cleaning {

/// Collects what the cleaner drops and changes, by kind.
class Findings {
 public:
  /// The following counts belong to this sheet of the result.
  void enterSheet(std::string_view name);
  /// The following counts belong to no sheet.
  void leaveSheet() { sheet_ = none; }
  /// The counts of the sheet that was entered last.
  CleanedSheet& sheet() { return report_.sheets.back(); }

  /// Copies the counts of an earlier sheet to the sheet that was entered last: both have the same part.
  void copyCounts(std::size_t earlierSheet);

  void add(CleaningKind kind, std::int64_t count = 1);
  void addPart(CleaningKind kind, std::string_view part);
  /// A dropped sheet.
  void addSheet(CleaningKind kind, std::string_view name);
  /// A number format that was replaced, with the cells that use it.
  void addFormat(ChangedContent format) { formats_.push_back(std::move(format)); }

  /// Returns the report. Leaves this empty.
  CleaningReport report();

 private:
  static constexpr std::int64_t none = -1;

  struct Finding {
    std::int64_t count = 0;
    std::vector<std::string> parts;
    std::vector<std::string> names;
    std::vector<SheetCount> sheets;
  };
  Finding& at(CleaningKind kind) { return findings_[static_cast<std::size_t>(kind)]; }

  CleaningReport report_;
  std::array<Finding, cleaningKindCount> findings_;
  std::vector<ChangedContent> formats_;
  std::int64_t sheet_ = none;
};

}  // namespace zelvo::Cleaning
