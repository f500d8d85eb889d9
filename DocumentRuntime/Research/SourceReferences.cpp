#include "DocumentRuntime/Research/SourceReferences.hpp"

#include <algorithm>

#include "Text/Unicode.hpp"
#include "Text/Url.hpp"

namespace zelvo::SourceReferences {
namespace {

/// Room for a digest with a prefix.
constexpr std::size_t maximumIdentifierBytes = 160;

bool isIdentifierCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
         c == '_';
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
  // First by their own scalars: texts that differ only in composition stay apart.
  std::sort(texts.begin(), texts.end());
  texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
  std::stable_sort(texts.begin(), texts.end(), Unicode::sortsBefore);
  return texts;
}

}  // namespace zelvo::SourceReferences
