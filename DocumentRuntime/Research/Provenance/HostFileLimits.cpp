#include "DocumentRuntime/Research/Provenance/HostFileLimits.hpp"

#include <string>

#include "Text/Unicode.hpp"

namespace zelvo::HostFileLimits {
namespace {

constexpr std::size_t maximumTextCharacters = 2'000;

[[noreturn]] void failAbove(JsonValue value, std::size_t maximum, const char* unit) {
  value.fail("Expected at most " + std::to_string(maximum) + " " + unit + ".");
}

}  // namespace

JsonArray array(JsonValue value, std::size_t maximumCount) {
  const JsonArray elements = value.array();
  if (elements.size() > maximumCount) failAbove(value, maximumCount, "entries");
  return elements;
}

void checkText(JsonValue value) {
  if (value.string().size() > maximumTextBytes) failAbove(value, maximumTextBytes, "bytes");
}

void checkCellText(JsonValue value) {
  checkText(value);
  if (Unicode::exceeds(value.string(), maximumTextCharacters))
    failAbove(value, maximumTextCharacters, "characters");
}

}  // namespace zelvo::HostFileLimits
