#include "Support/ReferenceXML.hpp"

#include <memory>
#include <vector>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

namespace zelvo::testing {
namespace {

/// Builds the same line as `dump` does from libxml2's events, with names as they are written.
struct ReferenceTree {
  struct Element {
    std::string start = {};
    std::string text = {};
    std::string children = {};
  };
  std::vector<Element> open{{}};
};

ReferenceTree& treeOf(void* data) {
  return *static_cast<ReferenceTree*>(data);
}

void started(void* tree, const xmlChar* name, const xmlChar** attributes) {
  const auto text = [](const xmlChar* chars) { return reinterpret_cast<const char*>(chars); };
  std::string start = text(name);
  for (std::size_t i = 0; attributes != nullptr && attributes[i] != nullptr; i += 2)
    start.append(i == 0 ? "(" : " ").append(text(attributes[i])).append("=").append(text(attributes[i + 1]));
  if (attributes != nullptr && attributes[0] != nullptr) start += ')';
  treeOf(tree).open.push_back({.start = std::move(start)});
}

void ended(void* tree, const xmlChar* /*name*/) {
  auto& open = treeOf(tree).open;
  auto& [start, text, children] = open.back();
  if (!text.empty()) start += '"' + text + '"';
  if (!children.empty()) start += '{' + children.substr(0, children.size() - 1) + '}';
  open[open.size() - 2].children += start + ' ';
  open.pop_back();
}

void found(void* tree, const xmlChar* text, int length) {
  treeOf(tree).open.back().text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
}

/// The line for a part that libxml2 takes, none for one that it refuses.
std::optional<std::string> reference(std::string_view xml) {
  ReferenceTree tree;
  // The first SAX interface: names with their prefixes, declarations among the attributes.
  xmlSAXHandler handler = {.startElement = started,
                           .endElement = ended,
                           .characters = found,
                           .ignorableWhitespace = found,
                           .cdataBlock = found,
                           .initialized = 1};
  const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
      xmlCreateMemoryParserCtxt(xml.data(), static_cast<int>(xml.size())), &xmlFreeParserCtxt);
  if (!context) return std::nullopt;
  *context->sax = handler;
  context->userData = &tree;
  xmlCtxtUseOptions(context.get(), XML_PARSE_SAX1 | XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_IGNORE_ENC |
                                       XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  xmlParseDocument(context.get());
  std::string& line = tree.open.front().children;
  if (context->wellFormed == 0 || tree.open.size() != 1 || line.empty()) return std::nullopt;
  line.pop_back();
  return line;
}

}  // namespace

std::optional<std::string> disagreement(std::string_view xml) {
  std::optional<std::string> ours;
  try {
    ours = dump(OOXML::xml(ByteBuffer::copyOf(xml)).root());
  } catch (const DocumentError& error) {
    const bool isParsed = error == DocumentError::invalidArchive("malformed XML");
    if (!isParsed || xml.find('\0') != std::string_view::npos) return std::nullopt;
  }
  const auto theirs = reference(xml);
  if (ours == theirs) return std::nullopt;
  if (ours.has_value() != theirs.has_value() && xml.find("<?xml") != std::string_view::npos)
    return std::nullopt;
  return "ours: " + ours.value_or("refused") + "\ntheirs: " + theirs.value_or("refused");
}

}  // namespace zelvo::testing
