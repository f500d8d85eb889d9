#include "DocumentRuntime/CleaningReadBack/BookReadBack.hpp"

#include <map>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"

namespace zelvo::CleaningReadBack {
namespace {

using Entry = OOXML::ArchiveTrees::Entry;
using OOXML::Namespace;

struct Link {
  std::string type;  ///< the last segment of a known type's URI, else empty
  std::string target;
};
using Links = std::map<std::string, Link, std::less<>>;

Links readLinks(OOXML::ArchiveTrees& trees, const std::string& part) {
  Links links;
  const Entry* const entry = trees.archive().find(part);
  if (entry == nullptr) return links;
  const Element root(trees.root(*entry));
  for (const XMLNode link : root.element().children()) {
    const auto [space, name] = Element(root, link).name();
    if (space != Namespace::packageRelationships || name != "Relationship") continue;
    links.emplace(link.attribute("Id").value_or(""),
                  Link{std::string(OOXML::relationshipType(link.attribute("Type").value_or(""))),
                       std::string(link.attribute("Target").value_or(""))});
  }
  return links;
}

const Entry* target(OOXML::ArchiveTrees& trees, const std::string& part, const Link& link) {
  return trees.archive().find(OOXML::resolve(link.target, part));
}

/// The target of a relationship of that type, or else the part of the usual name. Null if there is neither.
const Entry* linked(OOXML::ArchiveTrees& trees, const std::string& part, const Links& links,
                    std::string_view type, std::string_view usualName) {
  for (const auto& [identifier, link] : links) {
    if (link.type == type) return target(trees, part, link);
  }
  return trees.archive().find(usualName);
}

bool isOtherSheet(std::string_view type) {
  return type == "chartsheet" || type == "dialogsheet" || type == "xlMacrosheet" ||
         type == "xlIntlMacrosheet";
}

std::string relationshipID(const Element& sheet) {
  for (std::size_t i = 0; i < sheet.element().attributeCount(); ++i) {
    const auto [space, local] = sheet.attributeName(i);
    if (local == "id" && (space == Namespace::relationshipIDs || space == Namespace::strictRelationshipIDs))
      return std::string(sheet.element().attributeValue(i));
  }
  return {};
}

}  // namespace

bool isMain(const Element& element, std::string_view local) {
  const auto [space, name] = element.name();
  return name == local && (space == Namespace::main || space == Namespace::strictMain);
}

std::vector<XMLNode> named(const Element& parent, std::string_view local) {
  std::vector<XMLNode> found;
  for (const XMLNode child : parent.element().children()) {
    if (isMain(Element(parent, child), local)) found.push_back(child);
  }
  return found;
}

std::string stringText(const Element& string) {
  std::string text;
  std::string scratch;
  for (const XMLNode child : string.element().children()) {
    const Element scope(string, child);
    if (isMain(scope, "t")) text += child.content(scratch);
    if (!isMain(scope, "r")) continue;
    for (const XMLNode inner : named(scope, "t"))
      text += inner.content(scratch);
  }
  return text;
}

Book::Book(OOXML::ArchiveTrees& trees) {
  const Entry* const workbook =
      linked(trees, "_rels/.rels", readLinks(trees, "_rels/.rels"), "officeDocument", "xl/workbook.xml");
  if (workbook == nullptr) throw DocumentError::validationFailed("no workbook part");
  const std::string part = OOXML::relationshipsPart(workbook->name);
  const Links links = readLinks(trees, part);
  strings = linked(trees, part, links, "sharedStrings", "xl/sharedStrings.xml");
  styles = linked(trees, part, links, "styles", "xl/styles.xml");

  const Element root(trees.root(*workbook));
  for (const XMLNode properties : named(root, "workbookPr"))
    uses1904Dates = xmlFlag(properties.attribute("date1904"));
  for (const XMLNode list : named(root, "sheets")) {
    const Element scope(root, list);
    for (const XMLNode sheet : named(scope, "sheet")) {
      const auto link = links.find(relationshipID(Element(scope, sheet)));
      if (link == links.end()) throw DocumentError::validationFailed("no part of a sheet");
      BookSheet& found = sheets.emplace_back();
      found.name = sheet.attribute("name").value_or("");
      found.isHidden = sheet.attribute("state").value_or("visible") != "visible";
      found.isWorksheet = !isOtherSheet(link->second.type);
      if (!found.isWorksheet) continue;
      found.part = target(trees, part, link->second);
    }
  }
}

}  // namespace zelvo::CleaningReadBack
