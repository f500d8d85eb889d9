#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/XMLScanner.hpp"
#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// Dotless i, whose upper case is I.
constexpr std::string_view dotlessI = "\u0131";
/// y with ring above, whose upper case is Y and a combining ring.
constexpr std::string_view ringY = "\u1E99";

/// Whether the upper case of `text` starts with the upper case of `word`, which is in lower case. Apart from
/// i and y, only the two letters above have an upper case that starts with I or Y. The combining ring of the
/// second allows a match only at the end of the word.
bool startsWithUpper(std::string_view text, std::string_view word) {
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (text.empty()) return false;
    if (ASCII::lowercased(text.front()) == word[i]) {
      text.remove_prefix(1);
    } else if (word[i] == 'i' && text.starts_with(dotlessI)) {
      text.remove_prefix(dotlessI.size());
    } else if (word[i] == 'y' && i + 1 == word.size() && text.starts_with(ringY)) {
      text.remove_prefix(ringY.size());
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

bool OOXML::holdsDeclaration(std::string_view text) {
  // Looks for "!", which is much rarer in documents than "<".
  for (std::size_t at = text.find('!'); at != std::string_view::npos; at = text.find('!', at + 1)) {
    if (at == 0 || text[at - 1] != '<') continue;
    const std::string_view after = text.substr(at + 1);
    if (startsWithUpper(after, "doctype") || startsWithUpper(after, "entity")) return true;
  }
  return false;
}

XMLTree OOXML::xml(const ByteBuffer& part) {
  const std::string_view text = part.text();
  if (part.size() > maximumXMLBytes || !Unicode::isValid(text)) {
    throw DocumentError::unsupported(RefusalDetail::xmlEncoding);
  }
  if (holdsDeclaration(text)) throw DocumentError::unsafeContent(RefusalDetail::xmlDeclaration);
  // NUL is not allowed in XML, and programs that guess encodings would read the part as UTF-16.
  if (text.empty() || text.find('\0') != std::string_view::npos) {
    throw DocumentError::invalidArchive("malformed XML");
  }
  XMLTreeBuilder builder(part);
  XMLScanner(part, builder).run();
  return builder.finish();
}

}  // namespace zelvo
