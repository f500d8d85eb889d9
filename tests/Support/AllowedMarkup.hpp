#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cleaning/AllowList.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/PartMap.hpp"

/// Holds a cleaned package against the allow-list, without the writer that made it.
namespace zelvo::testing {

inline std::optional<Cleaning::Tag> rootOf(std::string_view part) {
  using Cleaning::Tag;
  if (part == "[Content_Types].xml") return Tag::types;
  if (part == "_rels/.rels" || part == "xl/_rels/workbook.xml.rels") return Tag::relationships;
  if (part == "xl/workbook.xml") return Tag::workbook;
  if (part == "xl/sharedStrings.xml") return Tag::strings;
  if (part == "xl/styles.xml") return Tag::styleSheet;
  if (part.starts_with("xl/worksheets/sheet")) return Tag::worksheet;
  return std::nullopt;
}

/// The first name or value that the list does not have; empty if there is none.
inline std::string notAllowed(XMLNode node, Cleaning::Tag tag, bool isRoot = true) {
  using namespace Cleaning;
  const ElementRule& allowed = rule(tag);
  const std::string element(node.qualifiedName());
  if (element != allowed.name) return "element " + element;
  for (std::size_t i = 0; i < node.attributeCount(); ++i) {
    const std::string_view attribute = node.attributeName(i);
    if (isRoot && (attribute == "xmlns" || attribute == "xmlns:r")) continue;
    const bool isAllowed = std::ranges::any_of(allowed.attributes, [&](const auto& row) {
      return row && name(row->attribute) == attribute && matches(row->grammar, node.attributeValue(i));
    });
    if (!isAllowed) return std::string(attribute) + " of " + element;
  }
  const bool isText = tag == Tag::formula || tag == Tag::value || tag == Tag::text;
  if (!isText && !node.text().empty()) return "text of " + element;
  for (const XMLNode child : node.children()) {
    const auto known = std::ranges::find_if(allowed.children, [&](const auto& childTag) {
      return childTag && rule(*childTag).name == child.qualifiedName();
    });
    if (known == allowed.children.end()) return "child of " + element;
    if (std::string found = notAllowed(child, **known, false); !found.empty()) return found;
  }
  return {};
}

inline std::string notAllowed(const PartMap& parts) {
  for (const auto& [name, bytes] : parts) {
    const auto root = rootOf(name);
    if (!root) return "part " + name;
    const std::string found = notAllowed(OOXML::xml(bytes).root(), *root);
    if (!found.empty()) return std::string(name).append(": ").append(found);
  }
  return {};
}

}  // namespace zelvo::testing
