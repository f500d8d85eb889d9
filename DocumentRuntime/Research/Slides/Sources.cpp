#include "DocumentRuntime/Research/Slides/Sources.hpp"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

/// The name that distinguishes a source. The label of a public source may be the default one, the same for
/// all, so its URL is added; the page of a local excerpt must not be fetched.
std::string nameOf(const ResearchSourceScope::Record& record) {
  const bool isLocal = record.kind == ResearchSourceScope::Record::Kind::localSnapshot;
  const std::string name = std::string(record.kindLabel()) + ": " + record.label;
  return isLocal || !record.provenanceURL ? name : name + ", " + *record.provenanceURL;
}

std::string twoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

/// "observed 2 April 2024, 07:30 UTC", or that the time is not known.
std::string observation(const ResearchSourceScope::Record& record) {
  constexpr std::array<std::string_view, 12> months = {"January",   "February", "March",    "April",
                                                       "May",       "June",     "July",     "August",
                                                       "September", "October",  "November", "December"};
  if (!record.observedAt) return "observation time not recorded";
  const auto day = std::chrono::floor<std::chrono::days>(*record.observedAt);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss time(*record.observedAt - day);
  std::string text = "observed " + std::to_string(static_cast<unsigned>(date.day())) + " ";
  text.append(months[static_cast<unsigned>(date.month()) - 1]).append(" ");
  const std::string isoText = record.observedUTC();
  text.append(isoText, 0, isoText.find('-', 1)).append(", ");
  return text + twoDigits(time.hours().count()) + ":" + twoDigits(time.minutes().count()) + " UTC";
}

SlideSource sourceOf(const ResearchSourceScope::Record& record) {
  return {.name = SlideText::flattened(nameOf(record)),
          .observation = " · " + observation(record),
          .identity = SlideText::flattened(record.metadata())};
}

/// The texts without repetitions, in the order of first occurrence.
std::vector<std::string> distinct(const std::vector<std::string>& texts) {
  std::vector<std::string> result;
  for (const std::string& text : texts) {
    if (std::ranges::find(result, text) == result.end()) result.push_back(text);
  }
  return result;
}

}  // namespace

std::vector<SlideSource> slideSources(const ResearchPresentation::Slide& slide,
                                      const std::optional<ResearchSourceScope>& scope) {
  std::vector<SlideSource> sources;
  for (const auto& record : ResearchPresentation::sourceRecords(slide, scope))
    sources.push_back(sourceOf(record));
  if (scope) return sources;
  for (const std::string& url : distinct(slide.sources))
    sources.push_back({.name = url, .observation = {}, .identity = url});
  for (const std::string& id : distinct(slide.sourceIDs.value_or(std::vector<std::string>())))
    sources.push_back({.name = "Source ID: " + id, .observation = {}, .identity = id});
  return sources;
}

}  // namespace zelvo
