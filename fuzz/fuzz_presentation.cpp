// Arbitrary decks: an accepted deck round-trips through its canonical encoding and is accepted again, each of
// its charts has data and one of the four chart parts, and its slides have its texts and charts.

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Datasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/PresentationModel/HostDatasets.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

namespace {

using zelvo::ResearchPresentation;
using zelvo::ResearchSpreadsheet;

/// Three years, with sources that the lists and scopes below allow.
ResearchSpreadsheet canonicalDataset() {
  ResearchSpreadsheet dataset = zelvo::testing::yearlyProfit();
  for (ResearchSpreadsheet::Row& row : dataset.rows)
    row.sources = {"http://h/"};
  return dataset;
}

/// Removes the part before the next NUL, and the NUL, from the front. Returns the part.
std::string_view nextText(std::string_view& rest) {
  const std::string_view text = rest.substr(0, rest.find('\0'));
  rest.remove_prefix(std::min(text.size() + 1, rest.size()));
  return text;
}

struct HostData {
  std::optional<zelvo::ResearchSourceScope> scope;
  ResearchSpreadsheet dataset;
};

/// Returns nullopt for texts that cannot be decoded.
std::optional<HostData> hostData(std::uint8_t mode, std::string_view rest) {
  HostData host = {{}, canonicalDataset()};
  const std::string scope(nextText(rest));
  const std::string dataset(nextText(rest));
  try {
    if (!scope.empty()) {
      host.scope = zelvo::researchSourceScopeFromJson(scope);
    } else if ((mode & 8) != 0) {
      host.scope.emplace(std::vector<std::string>{"a"},
                         std::map<std::string, std::string>{{"b", "http://h/"}},
                         std::vector<zelvo::ResearchSourceScope::Record>());
    }
    if (!dataset.empty()) host.dataset = zelvo::hostDatasetFromJson(dataset);
  } catch (const zelvo::DecodingError&) {
    return std::nullopt;
  }
  return host;
}

std::optional<ResearchPresentation> accepted(std::uint8_t mode, std::string_view text,
                                             const zelvo::AllowedSources& allowedSources,
                                             const HostData& host) {
  std::optional<ResearchSpreadsheet> dataset;
  if ((mode & 2) != 0) dataset = host.dataset;
  try {
    if ((mode & 1) == 0) return ResearchPresentation::decode(text, allowedSources, dataset, host.scope);
    return ResearchPresentation::decode(text, allowedSources, {{"a", host.dataset}, {"b", host.dataset}},
                                        {"a", "b"}, host.scope);
  } catch (const zelvo::DocumentError&) {
  } catch (const zelvo::DecodingError&) {
  }
  return std::nullopt;
}

void checkBindings(const ResearchPresentation& deck) {
  std::size_t chartSlides = 0;
  for (const auto& slide : deck.slides)
    chartSlides += slide.namedChart() ? 1 : 0;
  const auto bindings = deck.resolvedChartBindings();
  ZELVO_REQUIRE(bindings.size() == chartSlides);
  for (const auto& binding : bindings) {
    ZELVO_REQUIRE(binding.partNumber >= 1 && binding.partNumber <= 4);
    ZELVO_REQUIRE(binding.cells->size() == binding.dataset->rows.size());
    for (const auto& other : bindings)
      ZELVO_REQUIRE((other.partNumber == binding.partNumber) == (other.reference == binding.reference));
  }
}

/// Rendering verifies its result; only text that does not fit on a slide is refused.
void checkDelivery(const ResearchPresentation& deck, const std::optional<zelvo::ResearchSourceScope>& scope) {
  try {
    const auto written = zelvo::renderPresentation(deck, 4, scope);
    ZELVO_REQUIRE(written == zelvo::renderPresentation(deck, 4, scope));
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(error == zelvo::DocumentError::unsupported("slide text needs too much space"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte selects the host's options. The deck may be followed by a scope and a dataset, each after
  // a NUL, which JSON cannot contain.
  if (size == 0) return 0;
  const std::uint8_t mode = data[0];
  std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::string_view text = nextText(rest);
  zelvo::AllowedSources allowedSources;
  if ((mode & 4) != 0) allowedSources = {"http://h/"};
  const auto limit = zelvo::fuzzing::presentationMemory(size);
  const auto host = hostData(mode, rest);
  if (!host) return 0;
  const auto& scope = host->scope;
  // Every exception from here on is a finding.
  const auto deck = accepted(mode, text, allowedSources, *host);
  if (!deck) return 0;
  const std::string encoded = deck->encoded();
  // Not `decode`: encoded numbers can be longer, beyond the limit of a deck.
  const auto again = zelvo::fromJson<ResearchPresentation>(encoded);
  ZELVO_REQUIRE(again == *deck);
  ZELVO_REQUIRE(again.encoded() == encoded);
  again.validate(allowedSources, scope);
  checkBindings(again);
  checkDelivery(again, scope);
  for (const auto& slide : again.slides) {
    // Every identifier and URL that a scope allows has a record.
    const bool citesEvidence = !slide.sources.empty() || (slide.sourceIDs && !slide.sourceIDs->empty());
    const auto records = ResearchPresentation::sourceRecords(slide, scope);
    ZELVO_REQUIRE(records.empty() == (!scope || !citesEvidence));
  }
  return 0;
}
