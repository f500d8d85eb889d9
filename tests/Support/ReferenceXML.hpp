#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::testing {

/// A tree in one line: `name(attribute=value …)"text"{child child}`, with what is absent left out.
inline std::string dump(XMLNode node) {
  std::string out(node.qualifiedName());
  if (node.attributeCount() > 0) {
    out += '(';
    for (std::size_t i = 0; i < node.attributeCount(); ++i) {
      if (i > 0) out += ' ';
      out.append(node.attributeName(i)).append("=").append(node.attributeValue(i));
    }
    out += ')';
  }
  if (const std::string text = node.text(); !text.empty()) out += '"' + text + '"';
  if (!node.children().empty()) {
    out += '{';
    for (const XMLNode child : node.children())
      out += dump(child) + ' ';
    out.back() = '}';
  }
  return out;
}

/// What the XML reader and libxml2 say differently of a part, or none where they agree on acceptance and
/// content, or where a difference is known and right: what the reader refuses before it parses, or for its
/// limits, libxml2 may accept; and of declarations libxml2 takes other versions and encodings.
std::optional<std::string> disagreement(std::string_view xml);

}  // namespace zelvo::testing
