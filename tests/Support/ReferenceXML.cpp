#include "Support/ReferenceXML.hpp"

#include <memory>
#include <vector>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "Support/XMLDump.hpp"

namespace zelvo::testing {
namespace {

/// Builds the same line as `dump` does from libxml2's events, with names as they are written.
struct ReferenceTree {
  struct Element {
    std::string start;
    std::string text;
    std::string children;
  };
  std::vector<Element> open{{}};

  void end() {
    Element element = std::move(open.back());
    open.pop_back();
    std::string line = std::move(element.start);
    if (!element.text.empty()) line += '"' + element.text + '"';
    if (!element.children.empty()) {
      element.children.back() = '}';
      line += '{' + element.children;
    }
    open.back().children += line + ' ';
  }
};

const char* chars(const xmlChar* text) {
  return reinterpret_cast<const char*>(text);
}

void started(void* tree, const xmlChar* name, const xmlChar** attributes) {
  std::string start = chars(name);
  for (std::size_t i = 0; attributes != nullptr && attributes[i] != nullptr; i += 2) {
    start.append(i == 0 ? "(" : " ")
        .append(chars(attributes[i]))
        .append("=")
        .append(chars(attributes[i + 1]));
  }
  if (attributes != nullptr && attributes[0] != nullptr) start += ')';
  static_cast<ReferenceTree*>(tree)->open.push_back({.start = std::move(start), .text = {}, .children = {}});
}
void ended(void* tree, const xmlChar* /*name*/) {
  static_cast<ReferenceTree*>(tree)->end();
}
void found(void* tree, const xmlChar* text, int length) {
  static_cast<ReferenceTree*>(tree)->open.back().text.append(chars(text), static_cast<std::size_t>(length));
}
void ignoreMessage(void* /*tree*/, const char* /*format*/, ...) {}

/// The line for a part that libxml2 takes, none for one that it refuses.
std::optional<std::string> reference(std::string_view xml) {
  ReferenceTree tree;
  xmlSAXHandler handler{};
  handler.startElement = started;
  handler.endElement = ended;
  handler.characters = found;
  handler.cdataBlock = found;
  handler.ignorableWhitespace = found;
  handler.error = ignoreMessage;
  handler.warning = ignoreMessage;
  handler.initialized =
      1;  // the first SAX interface: names with their prefixes, declarations among the attributes
  const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(
      xmlCreateMemoryParserCtxt(xml.data(), static_cast<int>(xml.size())), &xmlFreeParserCtxt);
  if (!context) return std::nullopt;
  *context->sax = handler;
  context->userData = &tree;
  xmlCtxtUseOptions(context.get(), XML_PARSE_SAX1 | XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_IGNORE_ENC);
  context->sax->error = ignoreMessage;
  context->sax->warning = ignoreMessage;
  xmlParseDocument(context.get());
  if (context->wellFormed == 0 || tree.open.size() != 1 || tree.open.front().children.empty())
    return std::nullopt;
  tree.open.front().children.pop_back();
  return tree.open.front().children;
}

}  // namespace

std::optional<std::string> disagreement(std::string_view xml) {
  std::optional<std::string> ours;
  try {
    ours = dump(OOXML::xml(bytesOf(xml)).root());
  } catch (const DocumentError& error) {
    if (!(error == DocumentError::invalidArchive("malformed XML")) ||
        xml.find('\0') != std::string_view::npos) {
      return std::nullopt;
    }
  }
  const auto theirs = reference(xml);
  if (ours == theirs) return std::nullopt;
  if (ours.has_value() != theirs.has_value() && xml.find("<?xml") != std::string_view::npos)
    return std::nullopt;
  return "ours: " + ours.value_or("refused") + "\ntheirs: " + theirs.value_or("refused");
}

}  // namespace zelvo::testing
