// Decks of every kind: one that is accepted survives its canonical encoding, meets its rules again, every
// chart that it names has its data and one of the four chart parts, and its slides deliver what it says.

#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Datasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "fuzz/Require.hpp"

namespace {

using zelvo::ResearchPresentation;
using zelvo::ResearchSpreadsheet;

/// Three years, citing what lists and scopes below allow.
ResearchSpreadsheet canonicalDataset() {
  ResearchSpreadsheet dataset = zelvo::testing::yearlyProfit();
  for (ResearchSpreadsheet::Row& row : dataset.rows)
    row.sources = {"http://h/"};
  return dataset;
}

std::optional<ResearchPresentation> accepted(std::uint8_t mode, std::string_view text,
                                             const zelvo::AllowedSources& allowedSources,
                                             const std::optional<zelvo::ResearchSourceScope>& scope) {
  static const ResearchSpreadsheet canonical = canonicalDataset();
  std::optional<ResearchSpreadsheet> dataset;
  if ((mode & 2) != 0) dataset = canonical;
  try {
    if ((mode & 1) == 0) return ResearchPresentation::decode(text, allowedSources, dataset, scope);
    return ResearchPresentation::decode(text, allowedSources, {{"a", canonical}, {"b", canonical}},
                                        {"a", "b"}, scope);
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

/// Drawing proves by itself that everything arrived; only text that no slide can hold is refused.
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
  // The first byte chooses what the host gives.
  if (size == 0) return 0;
  zelvo::AllowedSources allowedSources;
  if ((data[0] & 4) != 0) allowedSources = {"http://h/"};
  std::optional<zelvo::ResearchSourceScope> scope;
  if ((data[0] & 8) != 0) {
    scope.emplace(std::vector<std::string>{"a"}, std::map<std::string, std::string>{{"b", "http://h/"}},
                  std::vector<zelvo::ResearchSourceScope::Record>());
  }
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  // What comes out from here on is a finding, errors included.
  const auto deck = accepted(data[0], text, allowedSources, scope);
  if (!deck) return 0;
  const std::string encoded = deck->encoded();
  // Not `decode`: written out, numbers can pass the bound of a deck.
  const auto again = zelvo::fromJson<ResearchPresentation>(encoded);
  ZELVO_REQUIRE(again == *deck);
  ZELVO_REQUIRE(again.encoded() == encoded);
  again.validate(allowedSources, scope);
  checkBindings(again);
  checkDelivery(again, scope);
  for (const auto& slide : again.slides) {
    // Every identifier and URL that a scope lets pass has its record.
    const bool citesEvidence = !slide.sources.empty() || (slide.sourceIDs && !slide.sourceIDs->empty());
    const auto records = ResearchPresentation::sourceRecords(slide, scope);
    ZELVO_REQUIRE(records.empty() == (!scope || !citesEvidence));
  }
  return 0;
}
