// Arbitrary responses: an accepted dataset round-trips through its canonical encoding, and its formulas
// result in finite numbers or blanks.

#include <cmath>
#include <cstdint>
#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // The first byte selects the host's options.
  if (size == 0) return 0;
  const bool requiresChart = (data[0] & 1) != 0;
  zelvo::AllowedSources allowedSources;
  if ((data[0] & 2) != 0) allowedSources = {"http://h/", "https://example.org/2022"};
  std::optional<zelvo::ResearchSourceScope> scope;
  if ((data[0] & 4) != 0) {
    scope.emplace(std::vector<std::string>{"a"}, std::map<std::string, std::string>{{"b", "http://h/"}},
                  std::vector<zelvo::ResearchSourceScope::Record>());
  }
  const std::string_view response(reinterpret_cast<const char*>(data) + 1, size - 1);
  const auto limit = zelvo::fuzzing::researchMemory(size);
  try {
    const auto dataset = zelvo::ResearchSpreadsheet::decode(response, requiresChart, allowedSources, scope);
    const std::string encoded = dataset.encoded();
    // Not `decode`: encoded numbers can be longer, beyond the limit of a response.
    const auto again = zelvo::fromJson<zelvo::ResearchSpreadsheet>(encoded);
    ZELVO_REQUIRE(again == dataset);
    ZELVO_REQUIRE(again.encoded() == encoded);
    const auto calculations = zelvo::ResearchFormulaEvaluator::resolve(dataset);
    ZELVO_REQUIRE(calculations.size() == dataset.calculationList().size());
    for (const auto& calculation : calculations) {
      ZELVO_REQUIRE(!calculation.value || std::isfinite(*calculation.value));
      ZELVO_REQUIRE(!calculation.formula.empty() && calculation.formula.size() <= 8192);
    }
    ZELVO_REQUIRE(dataset.resolvedCells().size() == dataset.rows.size());
  } catch (const zelvo::DocumentError&) {
  } catch (const zelvo::DecodingError&) {
  }
  return 0;
}
