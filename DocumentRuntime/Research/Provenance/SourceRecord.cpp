// The texts of a provenance record.

#include <array>
#include <cstdio>

#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"

namespace zelvo {
namespace {

using Record = ResearchSourceScope::Record;

struct KindTexts {
  std::string_view rawValue;
  std::string_view label;
};

constexpr std::array<KindTexts, 4> kindTexts = {{
    {"localSnapshot", "Local visible excerpt"},
    {"publicSearch", "Public search snippet"},
    {"publicPage", "Public page excerpt"},
    {"publicURL", "Public source URL"},
}};

const KindTexts& textsOf(Record::Kind kind) {
  return kindTexts[static_cast<std::size_t>(kind)];
}

std::string internetTime(std::chrono::sys_seconds instant) {
  const auto day = std::chrono::floor<std::chrono::days>(instant);
  const std::chrono::year_month_day date = day;
  const std::chrono::hh_mm_ss time(instant - day);
  std::array<char, 64> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                    static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                    static_cast<int>(time.seconds().count()));
  return {text.data(), static_cast<std::size_t>(length)};
}

std::string urlPart(const Record& record) {
  if (!record.provenanceURL) return "No URL";
  // A local excerpt never licenses fetching the page that it was seen on.
  const bool isLocal = record.kind == Record::Kind::localSnapshot;
  return (isLocal ? "Provenance only: " : "") + *record.provenanceURL;
}

}  // namespace

std::string_view rawValue(Record::Kind kind) {
  return textsOf(kind).rawValue;
}

std::optional<Record::Kind> evidenceKind(std::string_view rawValue) {
  for (std::size_t i = 0; i < kindTexts.size(); ++i) {
    if (kindTexts[i].rawValue == rawValue) return static_cast<Record::Kind>(i);
  }
  return std::nullopt;
}

std::string_view Record::kindLabel() const {
  return textsOf(kind).label;
}

std::string Record::observedUTC() const {
  return observedAt ? internetTime(*observedAt) : "Not recorded";
}

std::string Record::metadata() const {
  constexpr std::string_view separator = " | ";
  std::string text = id;
  text.append(separator).append(rawValue(kind));
  text.append(separator).append(label);
  text.append(separator).append(observedUTC());
  text.append(separator).append(coverage);
  text.append(separator).append(urlPart(*this));
  return text;
}

}  // namespace zelvo
