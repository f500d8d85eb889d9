#include "DocumentRuntime/Research/Slides/Sources.hpp"

#include <algorithm>

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

SlideSource sourceOf(const ResearchSourceScope::Record& record) {
  return {.name = SlideText::flattened(nameOf(record)),
          .observation = " · " + record.observedUTC(),
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
