#include "DocumentRuntime/PackageIO/PackageGate.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <span>
#include <utility>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "Text/Digest.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::OOXML {
namespace {

constexpr std::string_view contentTypesPart = "[Content_Types].xml";
constexpr std::string_view packageRelationshipsPart = "_rels/.rels";

/// Names, or parts of names, of parts that run code, reach outside the file, or have features that the reader
/// does not support. Compared with names in lower case.
constexpr std::array<std::string_view, 8> refusedNames = {
    "vbaproject",   "activex/",   "externallinks/", "connections.xml",
    "querytables/", "pivotcache", "pivottable",     "customui/",
};
constexpr std::string_view embeddingsFolder = "embeddings/";

/// The same for content types: an active part may have any name.
constexpr std::array<std::string_view, 4> activeContentTypes = {"macroenabled", "vbaproject", "activex",
                                                                "oleobject"};

bool containsAny(std::string_view text, std::span<const std::string_view> words) {
  return std::any_of(words.begin(), words.end(),
                     [&](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

/// The name without a number is allowed in any letter case, those with a number in lower case only.
bool isAllowedWorkbook(std::string_view name, std::string_view lowerCaseName, PackageAllowance allowance) {
  constexpr std::string_view start = "ppt/embeddings/chart-data";
  constexpr std::string_view end = ".xlsx";
  if (!lowerCaseName.starts_with(start) || !lowerCaseName.ends_with(end)) return false;
  const std::size_t digits = lowerCaseName.size() - start.size() - end.size();
  if (digits == 0) return allowance.chartWorkbook;
  const char number = lowerCaseName[start.size()];
  return allowance.researchChartWorkbooks && name == lowerCaseName && digits == 1 && number >= '1' &&
         number <= '4';
}

/// Whether a part of that name is XML to be vetted; if not, it is an embedded workbook, which is skipped.
bool isVettedPart(std::string_view name, std::string_view lowerCaseName, PackageAllowance allowance) {
  if (containsAny(lowerCaseName, refusedNames)) {
    throw DocumentError::unsafeContent(RefusalDetail::activeFeature);
  }
  const bool allowedWorkbook = isAllowedWorkbook(name, lowerCaseName, allowance);
  if (lowerCaseName.find(embeddingsFolder) != std::string_view::npos && !allowedWorkbook) {
    throw DocumentError::unsafeContent(RefusalDetail::embeddedObject);
  }
  if (lowerCaseName.ends_with(".xml") || lowerCaseName.ends_with(".rels")) return true;
  if (!allowedWorkbook) throw DocumentError::unsupported(RefusalDetail::nonXMLPart);
  return false;
}

void checkContentTypes(XMLNode root) {
  for (const XMLNode entry : root.children()) {
    const std::string type = Unicode::lowercased(entry.attribute("ContentType").value_or(""));
    if (containsAny(type, activeContentTypes))
      throw DocumentError::unsafeContent(RefusalDetail::activeContentType);
  }
}

void checkRelationships(XMLNode root, std::string_view partName, const PartMap& parts) {
  if (root.name() != "Relationships") throw DocumentError::invalidArchive("relationships root");

  const TargetResolver resolver(partName);
  // Not a hash table: a part may hold 200,000 identifiers, chosen to collide.
  std::set<std::string_view> identifiers;
  for (const XMLNode relationship : root.children()) {
    const auto identifier = relationship.attribute("Id");
    const auto target = relationship.attribute("Target");
    if (relationship.name() != "Relationship" || !identifier || !identifiers.insert(*identifier).second ||
        !target || relationship.attribute("TargetMode").value_or("Internal") != "Internal") {
      throw DocumentError::unsafeContent(RefusalDetail::externalRelationship);
    }
    if (!parts.contains(resolver.resolve(*target))) {
      throw DocumentError::invalidArchive(RefusalDetail::missingTarget);
    }
  }
}

}  // namespace

std::string hash(ByteView bytes) {
  return Digest::sha256(bytes);
}

PartMap package(ByteView bytes, PackageAllowance allowance, const PartVisitor& visitor,
                const std::stop_token& stop) {
  return vetted(BoundedZIP::read(bytes, stop), allowance, visitor, stop);
}

PartMap vetted(PartMap parts, PackageAllowance allowance, const PartVisitor& visitor,
               const std::stop_token& stop) {
  if (!parts.contains(contentTypesPart) || !parts.contains(packageRelationshipsPart)) {
    throw DocumentError::invalidArchive(RefusalDetail::notAPackage);
  }
  for (const auto& [name, bytes] : parts) {
    throwIfCancelled(stop);
    const std::string lowerCaseName = Unicode::lowercased(name);
    if (!isVettedPart(name, lowerCaseName, allowance)) continue;
    XMLTree tree = xml(bytes);
    if (name == contentTypesPart) checkContentTypes(tree.root());
    if (lowerCaseName.ends_with(".rels")) checkRelationships(tree.root(), name, parts);
    if (visitor) visitor(name, tree);
  }
  return parts;
}

}  // namespace zelvo::OOXML
