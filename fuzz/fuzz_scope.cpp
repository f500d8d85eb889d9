// Arbitrary source scopes: every reference that a scope allows has its record, in order and each once.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

namespace {

constexpr std::size_t maximumErrorBytes = 512;

void requireRecords(const zelvo::ResearchSourceScope& scope, const std::vector<std::string>& ids,
                    const std::vector<std::string>& urls) {
  try {
    scope.validate(ids, urls, true);
  } catch (const zelvo::DocumentError&) {
    return;
  }
  const auto records = scope.selectedRecords(ids, urls);
  ZELVO_REQUIRE(records.empty() == (ids.empty() && urls.empty()));
  ZELVO_REQUIRE(records.size() <= ids.size() + urls.size());
  for (const std::string& id : ids)
    ZELVO_REQUIRE(std::ranges::count(records, id, &zelvo::ResearchSourceScope::Record::id) == 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto limit = zelvo::fuzzing::researchMemory(size);
  try {
    const auto scope =
        zelvo::researchSourceScopeFromJson(std::string(reinterpret_cast<const char*>(data), size));
    requireRecords(scope, {}, {});
    requireRecords(scope, {"a"}, {});
    requireRecords(scope, {"b", "a"}, {"http://h/"});
    requireRecords(scope, {}, {"http://h/", "http://h/"});
  } catch (const zelvo::DecodingError& error) {
    const std::string_view text = error.what();
    ZELVO_REQUIRE(!text.empty() && text.size() < maximumErrorBytes);
  }
  return 0;
}
