#pragma once

#include <string>

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

}  // namespace zelvo::testing
