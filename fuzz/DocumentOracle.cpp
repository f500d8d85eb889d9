#include "fuzz/DocumentOracle.hpp"

#include <algorithm>
#include <functional>
#include <memory>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include "DocumentRuntime/PackageIO/Relationships.hpp"

namespace zelvo::fuzzing {
namespace {

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

/// Recovers from unknown XML versions. Reads UTF-8, whatever encoding is declared.
Document parsed(std::string_view xml) {
  constexpr int options =
      XML_PARSE_RECOVER | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET | XML_PARSE_IGNORE_ENC;
  return {xmlReadMemory(xml.data(), static_cast<int>(xml.size()), nullptr, "UTF-8", options), &xmlFreeDoc};
}

std::string text(const xmlChar* characters) {
  return characters == nullptr ? std::string() : reinterpret_cast<const char*>(characters);
}

std::string qualified(const xmlNs* space, const xmlChar* name) {
  return space == nullptr || space->prefix == nullptr ? text(name) : text(space->prefix) + ':' + text(name);
}

std::string localName(const xmlNode* node) {
  const std::string name = text(node->name);
  return name.substr(name.rfind(':') + 1);
}

using Visit = std::function<void(const xmlNode*)>;

void visitElements(const xmlNode* node, const Visit& visit) {
  if (node == nullptr || node->type != XML_ELEMENT_NODE) return;
  visit(node);
  for (const xmlNode* child = node->children; child != nullptr; child = child->next)
    visitElements(child, visit);
}

void visitChildren(const xmlNode* node, std::string_view name, const Visit& visit) {
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE && localName(child) == name) visit(child);
  }
}

void appendText(const xmlNode* node, bool isInText, std::string& out) {
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    const bool isText = child->type == XML_TEXT_NODE || child->type == XML_CDATA_SECTION_NODE;
    if (isText && isInText) out += text(child->content);
    if (child->type == XML_ELEMENT_NODE) appendText(child, isInText || localName(child) == "t", out);
  }
}

std::string attribute(const xmlNode* node, std::string_view qualifiedName) {
  for (const xmlAttr* entry = node->properties; entry != nullptr; entry = entry->next) {
    if (qualified(entry->ns, entry->name) == qualifiedName) {
      return entry->children == nullptr ? "" : text(entry->children->content);
    }
  }
  return {};
}

void visitPart(std::string_view xml, const Visit& visit) {
  const Document document = parsed(xml);
  if (document) visitElements(xmlDocGetRootElement(document.get()), visit);
}

}  // namespace

std::vector<std::vector<std::string>> cellTexts(std::string_view xml) {
  std::vector<std::vector<std::string>> rows;
  visitPart(xml, [&](const xmlNode* table) {
    if (localName(table) != "tbl") return;
    visitChildren(table, "tr", [&](const xmlNode* row) {
      auto& cells = rows.emplace_back();
      visitChildren(row, "tc", [&](const xmlNode* cell) { appendText(cell, false, cells.emplace_back()); });
    });
  });
  return rows;
}

std::vector<std::string> slideParts(const PartMap& parts) {
  constexpr std::string_view relationships = "ppt/_rels/presentation.xml.rels";
  std::vector<std::string> names;
  visitPart(parts.find("ppt/presentation.xml")->text(), [&](const xmlNode* slide) {
    if (localName(slide) != "sldId") return;
    visitPart(parts.find(relationships)->text(), [&](const xmlNode* relationship) {
      if (localName(relationship) != "Relationship") return;
      if (attribute(relationship, "Id") != attribute(slide, "r:id")) return;
      names.push_back(OOXML::resolve(attribute(relationship, "Target"), relationships));
    });
  });
  return names;
}

std::vector<std::string> elementNames(std::string_view xml) {
  std::vector<std::string> names;
  visitPart(xml, [&](const xmlNode* element) { names.push_back(qualified(element->ns, element->name)); });
  return names;
}

}  // namespace zelvo::fuzzing
