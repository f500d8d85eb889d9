#include "DocumentRuntime/Cleaning/Findings.hpp"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace zelvo::Cleaning {
namespace {

template <typename T>
std::optional<std::vector<T>> unlessEmpty(std::vector<T> list) {
  if (list.empty()) return std::nullopt;
  return list;
}

}  // namespace

void Findings::enterSheet(std::string_view name) {
  sheet_ = static_cast<std::int64_t>(report_.sheets.size());
  report_.sheets.push_back({.name = std::string(name)});
}

void Findings::copyCounts(std::size_t earlierSheet) {
  sheet().cells = report_.sheets[earlierSheet].cells;
  sheet().formulas = report_.sheets[earlierSheet].formulas;
}

void Findings::add(CleaningKind kind, std::int64_t count) {
  if (count == 0) return;
  Finding& finding = at(kind);
  finding.count += count;
  if (sheet_ == none) return;
  if (finding.sheets.empty() || finding.sheets.back().sheet != sheet_)
    finding.sheets.push_back({.sheet = sheet_});
  finding.sheets.back().count += count;
}

void Findings::addPart(CleaningKind kind, std::string_view part) {
  at(kind).parts.emplace_back(part);
}

void Findings::addSheet(CleaningKind kind, std::string_view name) {
  Finding& finding = at(kind);
  ++finding.count;
  if (finding.names.size() < DroppedContent::maximumListedNames) finding.names.emplace_back(name);
}

CleaningReport Findings::report() {
  for (std::size_t i = 0; i < cleaningKindCount; ++i) {
    const auto kind = static_cast<CleaningKind>(i);
    Finding& finding = findings_[i];
    // One entry per format code.
    if (kind == CleaningKind::numberFormats)
      std::move(formats_.begin(), formats_.end(), std::back_inserter(report_.changed));
    // The number of parts is used only if nothing was counted in the sheets.
    if (finding.count == 0) finding.count = static_cast<std::int64_t>(finding.parts.size());
    if (finding.count == 0) continue;
    std::string name(kindName(kind));
    if (kind < firstChangedKind) {
      std::sort(finding.parts.begin(), finding.parts.end());
      report_.dropped.push_back({.kind = std::move(name),
                                 .count = finding.count,
                                 .parts = std::move(finding.parts),
                                 .names = unlessEmpty(std::move(finding.names)),
                                 .sheets = unlessEmpty(std::move(finding.sheets))});
    } else {
      report_.changed.push_back({.kind = std::move(name),
                                 .count = finding.count,
                                 .sheets = unlessEmpty(std::move(finding.sheets))});
    }
  }
  return std::exchange(report_, {});
}

}  // namespace zelvo::Cleaning
