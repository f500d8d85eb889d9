#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cleaning/Findings.hpp"
#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"

namespace zelvo::Cleaning {

/// One relationship, as written in a relationships part.
struct SourceRelationship {
  std::string type;  ///< the last segment of a known type's URI, else empty
  std::string target;
  bool isExternal = false;
};

/// The relationships of one part.
class SourceRelationships {
 public:
  /// `root` is the root of the relationships part `partName`. Throws `DocumentError` invalidArchive
  /// "relationships root", or unsafeContent "external or ambiguous relationship" if an identifier is missing
  /// or repeated.
  SourceRelationships(XMLNode root, std::string_view partName);
  SourceRelationships() = default;

  const std::map<std::string, SourceRelationship, std::less<>>& byIdentifier() const { return byIdentifier_; }
  /// The target part of a relationship. Throws `DocumentError` unsafeContent "external or ambiguous
  /// relationship", invalidArchive "missing relationship target", and what resolving the target throws.
  const OOXML::ArchiveTrees::Entry& target(const SourceRelationship& relationship,
                                           const BoundedZIP::Archive& archive) const;

 private:
  std::string partName_;
  std::map<std::string, SourceRelationship, std::less<>> byIdentifier_;
};

/// The packaging of a source workbook. Only parts that are reached by relationships are expanded.
class SourcePackage {
 public:
  using Entry = OOXML::ArchiveTrees::Entry;

  /// `trees` must outlive this. Throws `DocumentError` invalidArchive "not an OOXML package", unsupported
  /// "XLSX workbook structure" or "binary workbook", and what reading the parts throws.
  explicit SourcePackage(OOXML::ArchiveTrees& trees);

  const Entry& workbook() const { return *workbook_; }
  const SourceRelationships& workbookRelationships() const { return workbookRelationships_; }
  /// Null if the workbook has none.
  const Entry* sharedStrings() const { return sharedStrings_; }
  const Entry* styles() const { return styles_; }
  /// Whether the workbook part has the content type of a plain workbook.
  bool isPlainWorkbook() const;

  /// Marks a part as read.
  void markRead(const Entry& part) { read_.insert(&part); }
  /// Reports every part that was not read, by its content type, else by its name.
  void reportUnread(Findings& findings) const;

 private:
  const Entry& required(std::string_view name);
  SourceRelationships relationshipsOf(std::string_view part);
  void readContentTypes(XMLNode root);
  std::string contentType(std::string_view part) const;
  const Entry* linkedPart(const SourceRelationships& relationships, std::string_view type,
                          std::string_view usualName);

  OOXML::ArchiveTrees& trees_;
  std::map<std::string, std::string> typeOfPart_;       ///< by name in lower case
  std::map<std::string, std::string> typeOfExtension_;  ///< by extension in lower case
  const Entry* workbook_ = nullptr;
  SourceRelationships workbookRelationships_;
  const Entry* sharedStrings_ = nullptr;
  const Entry* styles_ = nullptr;
  std::set<const Entry*> read_;
};

}  // namespace zelvo::Cleaning
