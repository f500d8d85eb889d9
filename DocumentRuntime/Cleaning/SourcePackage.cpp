#include "DocumentRuntime/Cleaning/SourcePackage.hpp"

#include <algorithm>

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

// Names by which some readers find these parts, regardless of the relationships.
constexpr std::string_view usualWorkbook = "xl/workbook.xml";
constexpr std::string_view usualSharedStrings = "xl/sharedStrings.xml";
constexpr std::string_view usualStyles = "xl/styles.xml";

constexpr std::string_view plainWorkbookType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";

DocumentError ambiguousRelationship() {
  return DocumentError::unsafeContent(RefusalDetail::externalRelationship);
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
            .try_emplace(
                std::string(*identifier),
                SourceRelationship{
                    .type = std::string(OOXML::relationshipType(child.attribute("Type").value_or(""))),
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
  const std::string name = OOXML::relationshipsPart(part);
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

/// Some programs find a part by its relationship's type, others by its usual name. If these are different
/// parts, or several relationships have the type, two programs would read different workbooks.
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
