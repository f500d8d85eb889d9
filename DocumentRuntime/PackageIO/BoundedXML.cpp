#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/DeclarationScan.hpp"
#include "DocumentRuntime/PackageIO/XMLScanner.hpp"
#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {

XMLTree OOXML::xml(ByteView part) {
  const std::string_view text = textOf(part);
  if (part.size() > maximumXMLBytes || !Unicode::isValid(text)) {
    throw DocumentError::unsupported("XML encoding or size");
  }
  if (holdsDeclaration(text)) throw DocumentError::unsafeContent("XML DTD or entity declaration");
  // No character of XML, and what programs that guess encodings take for UTF-16.
  if (text.find('\0') != std::string_view::npos) throw DocumentError::invalidArchive("malformed XML");
  XMLTreeBuilder builder(text.size());
  XMLScanner(text, builder).run();
  return builder.finish();
}

}  // namespace zelvo
