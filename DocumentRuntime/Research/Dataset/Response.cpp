// Decoding of a model's response, from the raw text to the validated dataset.

#include <cstddef>
#include <string>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// Bytes of JSON. What a model answers is a small multiple of what fits on a few pages.
constexpr std::size_t maximumResponseBytes = 240'000;

constexpr std::string_view fence = "```";

/// Without the code fence around it, its first line (which may name a language) included. The line feed
/// cannot stand inside either mark, so both are there.
std::string_view withoutFence(std::string_view text) {
  const std::size_t lineFeed = text.find('\n');
  if (!text.starts_with(fence) || lineFeed == std::string_view::npos || !text.ends_with(fence)) return text;
  text.remove_prefix(lineFeed + 1);
  text.remove_suffix(fence.size());
  return text;
}

}  // namespace

ResearchSpreadsheet ResearchSpreadsheet::decode(std::string_view text, bool requiresChart,
                                                const AllowedSources& allowedSources,
                                                const std::optional<ResearchSourceScope>& sourceScope) {
  if (!Unicode::isValid(text)) throw DecodingError("The text is not UTF-8.");
  const std::string_view json = withoutFence(Unicode::trimmed(text));
  if (json.size() > maximumResponseBytes) throw DocumentError::resourceLimit("spreadsheet response");
  auto spreadsheet = fromJson<ResearchSpreadsheet>(std::string(json));
  spreadsheet.validate(requiresChart, allowedSources, sourceScope);
  return spreadsheet;
}

}  // namespace zelvo
