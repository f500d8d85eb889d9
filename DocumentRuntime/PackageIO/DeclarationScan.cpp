#include "DocumentRuntime/PackageIO/DeclarationScan.hpp"

namespace zelvo::OOXML {
namespace {

/// Dotless i, whose upper case is I.
constexpr std::string_view dotlessI = "\u0131";
/// y with ring above, whose upper case is Y and a combining ring.
constexpr std::string_view ringY = "\u1E99";

char asciiUpper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Whether the upper case of `text` starts with `word`. Of all letters only the two above become I or Y
/// without being one; the ring that follows the second matters only where no further letter of the word does.
bool startsWithUpper(std::string_view text, std::string_view word) {
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (text.empty()) return false;
    if (asciiUpper(text.front()) == word[i]) {
      text.remove_prefix(1);
    } else if (word[i] == 'I' && text.starts_with(dotlessI)) {
      text.remove_prefix(dotlessI.size());
    } else if (word[i] == 'Y' && i + 1 == word.size() && text.starts_with(ringY)) {
      text.remove_prefix(ringY.size());
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

bool holdsDeclaration(std::string_view text) {
  // "!" is far rarer in documents than "<".
  for (std::size_t at = text.find('!'); at != std::string_view::npos; at = text.find('!', at + 1)) {
    if (at == 0 || text[at - 1] != '<') continue;
    const std::string_view after = text.substr(at + 1);
    if (startsWithUpper(after, "DOCTYPE") || startsWithUpper(after, "ENTITY")) return true;
  }
  return false;
}

}  // namespace zelvo::OOXML
