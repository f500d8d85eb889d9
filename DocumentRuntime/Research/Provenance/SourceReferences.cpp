#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"

#include <algorithm>
#include <utility>

#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"
#include "Text/Url.hpp"

namespace zelvo::SourceReferences {
namespace {

/// Enough for a digest with a prefix.
constexpr std::size_t maximumIdentifierBytes = 160;

bool isIdentifierCharacter(char c) {
  return ASCII::isLetter(c) || ASCII::isDigit(c) || c == '-' || c == '.' || c == '_';
}

}  // namespace

bool isIdentifier(std::string_view text) {
  return !text.empty() && text.size() <= maximumIdentifierBytes &&
         std::ranges::all_of(text, isIdentifierCharacter);
}

bool areDistinctIdentifiers(std::vector<std::string_view> texts) {
  std::sort(texts.begin(), texts.end());
  return std::adjacent_find(texts.begin(), texts.end()) == texts.end() &&
         std::ranges::all_of(texts, isIdentifier);
}

bool isWebURL(std::string_view text) {
  const auto url = urlComponents(text);
  return url && (url->scheme == "http" || url->scheme == "https") && !url->host.empty() && !url->hasUserInfo;
}

std::vector<std::string> distinctSorted(std::vector<std::string> texts) {
  // First sorted by their own scalars: texts that differ only in composition are not equal.
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  if (std::ranges::all_of(texts, Unicode::isASCII)) return texts;
  // Each is composed once, not for every comparison.
  std::vector<std::pair<std::string, std::string>> composed;
  composed.reserve(texts.size());
  for (std::string& text : texts)
    composed.emplace_back(Unicode::composed(text), std::move(text));
  std::sort(composed.begin(), composed.end());
  for (std::size_t i = 0; i < texts.size(); ++i)
    texts[i] = std::move(composed[i].second);
  return texts;
}

}  // namespace zelvo::SourceReferences
