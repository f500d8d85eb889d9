#include "DocumentRuntime/Cleaning/SourcePackage.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/Cleaning/DroppedParts.hpp"
#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/PackageIO/XMLNamespaces.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

using OOXML::Namespace;
using OOXML::NamespaceScope;

constexpr std::string_view contentTypesPart = "[Content_Types].xml";
constexpr std::string_view packageRelationshipsPart = "_rels/.rels";

/// Where relationship types stand: Transitional, Strict, and what one program added.
constexpr std::array<std::string_view, 3> relationshipTypeFolders = {
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/",
    "http://purl.oclc.org/ooxml/officeDocument/relationships/",
    "http://schemas.microsoft.com/office/2006/relationships/",
};

// By what readers look for these parts, whatever the relationships say.
constexpr std::string_view usualWorkbook = "xl/workbook.xml";
constexpr std::string_view usualSharedStrings = "xl/sharedStrings.xml";
constexpr std::string_view usualStyles = "xl/styles.xml";

constexpr std::string_view plainWorkbookType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

std::string typeWord(std::string_view type) {
  for (const std::string_view folder : relationshipTypeFolders) {
    if (type.starts_with(folder)) return std::string(type.substr(folder.size()));
  }
  return {};
}

DocumentError ambiguousRelationship() {
  return DocumentError::unsafeContent(RefusalDetail::externalRelationship);
}

std::string relationshipsPartOf(std::string_view part) {
  const std::size_t name = part.rfind('/') + 1;  // npos + 1 is 0: a part in no folder
  std::string path(part.substr(0, name));
  return path.append("_rels/").append(part.substr(name)).append(".rels");
}

}  // namespace

SourceRelationships::SourceRelationships(XMLNode root, std::string_view partName) : partName_(partName) {
  const NamespaceScope scope(root);
  if (scope.name() != OOXML::ExpandedName{Namespace::packageRelationships, "Relationships"})
    throw DocumentError::invalidArchive("relationships root");
  for (const XMLNode child : root.children()) {
    if (NamespaceScope(scope, child).name() !=
        OOXML::ExpandedName{Namespace::packageRelationships, "Relationship"})
      continue;
    const auto identifier = child.attribute("Id");
    if (!identifier) throw ambiguousRelationship();
    const bool isNew =
        byIdentifier_
            .try_emplace(std::string(*identifier),
                         SourceRelationship{
                             .type = typeWord(child.attribute("Type").value_or("")),
                             .target = std::string(child.attribute("Target").value_or("")),
                             .isExternal = child.attribute("TargetMode").value_or("Internal") != "Internal"})
            .second;
    if (!isNew) throw ambiguousRelationship();
  }
}

const OOXML::ArchiveTrees::Entry& SourceRelationships::target(const SourceRelationship& relationship,
                                                              const BoundedZIP::Archive& archive) const {
  if (relationship.isExternal) throw ambiguousRelationship();
  const auto* part = archive.find(OOXML::resolve(relationship.target, partName_));
  if (part == nullptr) throw DocumentError::invalidArchive(RefusalDetail::missingTarget);
  return *part;
}

SourcePackage::SourcePackage(OOXML::ArchiveTrees& trees) : trees_(trees) {
  const Entry& contentTypes = required(contentTypesPart);
  static_cast<void>(required(packageRelationshipsPart));
  readContentTypes(trees_.root(contentTypes));

  workbook_ = linkedPart(relationshipsOf(""), "officeDocument", usualWorkbook);
  if (workbook_ == nullptr) throw DocumentError::unsupported(RefusalDetail::workbookStructure);
  markRead(*workbook_);
  if (contentType(workbook_->name).find("sheet.binary") != std::string::npos)
    throw DocumentError::unsupported(RefusalDetail::binaryWorkbook);
  workbookRelationships_ = relationshipsOf(workbook_->name);
  sharedStrings_ = linkedPart(workbookRelationships_, "sharedStrings", usualSharedStrings);
  styles_ = linkedPart(workbookRelationships_, "styles", usualStyles);
}

const SourcePackage::Entry& SourcePackage::required(std::string_view name) {
  const Entry* const part = trees_.archive().find(name);
  if (part == nullptr) throw DocumentError::invalidArchive(RefusalDetail::notAPackage);
  markRead(*part);
  return *part;
}

SourceRelationships SourcePackage::relationshipsOf(std::string_view part) {
  const std::string name = relationshipsPartOf(part);
  const Entry* const entry = trees_.archive().find(name);
  if (entry == nullptr) return {};
  markRead(*entry);
  return {trees_.root(*entry), name};
}

void SourcePackage::readContentTypes(XMLNode root) {
  const NamespaceScope scope(root);
  for (const XMLNode child : root.children()) {
    const auto [space, local] = NamespaceScope(scope, child).name();
    if (space != Namespace::contentTypes) continue;
    const std::string type = Unicode::lowercased(child.attribute("ContentType").value_or(""));
    if (local == "Override") {
      std::string_view part = child.attribute("PartName").value_or("");
      if (part.starts_with('/')) part.remove_prefix(1);
      typeOfPart_.try_emplace(Unicode::lowercased(part), type);
    } else if (local == "Default") {
      typeOfExtension_.try_emplace(Unicode::lowercased(child.attribute("Extension").value_or("")), type);
    }
  }
}

std::string SourcePackage::contentType(std::string_view part) const {
  const std::string name = Unicode::lowercased(part);
  if (const auto found = typeOfPart_.find(name); found != typeOfPart_.end()) return found->second;
  const auto found = typeOfExtension_.find(name.substr(name.rfind('.') + 1));
  return found == typeOfExtension_.end() ? std::string() : found->second;
}

/// Programs find a part by its relationship's type or by its usual name. Where the two lead to different
/// parts, or several relationships do, two programs read two workbooks.
const SourcePackage::Entry* SourcePackage::linkedPart(const SourceRelationships& relationships,
                                                      std::string_view type, std::string_view usualName) {
  const Entry* found = trees_.archive().find(usualName);
  for (const auto& [identifier, relationship] : relationships.byIdentifier()) {
    if (relationship.type != type) continue;
    const Entry* const target = &relationships.target(relationship, trees_.archive());
    if (found != nullptr && found != target)
      throw DocumentError::invalidArchive("two parts of the type " + std::string(type));
    found = target;
  }
  return found;
}

bool SourcePackage::isPlainWorkbook() const {
  const std::string type = contentType(workbook_->name);
  return type == plainWorkbookType;
}

void SourcePackage::reportUnread(Findings& findings) const {
  for (const Entry& part : trees_.archive().entries()) {
    if (read_.contains(&part)) continue;
    findings.addPart(kindOfPart(Unicode::lowercased(part.name), contentType(part.name)), part.name);
  }
}

}  // namespace zelvo::Cleaning
