#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {
/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* relationshipURI = "relationship URI";
inline constexpr const char* relationshipTraversal = "relationship traversal";
inline constexpr const char* relationshipPath = "relationship path";

}  // namespace RefusalDetail

namespace OOXML {

/// The name of the part that a relationship's target refers to. `relationshipPart` is the part that holds the
/// relationship. Throws `DocumentError` unsafeContent "relationship URI", "relationship traversal" or
/// "relationship path", or invalidArchive "relationship location".
std::string resolve(std::string_view target, std::string_view relationshipPart);

/// The last segment of a relationship type's URI, as a view into `uri`: "worksheet". The part before it may
/// be that of Transitional or Strict documents, or of the first extensions. Empty for any other URI.
std::string_view relationshipType(std::string_view uri);

/// The name of the part with the relationships of a part; those of the package for an empty name.
std::string relationshipsPart(std::string_view part);

/// `resolve` for all targets of one relationships part, whose folder is then computed once: a part may hold
/// 200,000 targets in a folder at a depth of one hundred.
class TargetResolver {
 public:
  explicit TargetResolver(std::string_view relationshipPart);

  /// As `OOXML::resolve`, errors included.
  std::string resolve(std::string_view target) const;

 private:
  /// The folder that targets are relative to. Absent if the part's name is not that of a relationships part,
  /// which is an error only once a target is valid.
  std::optional<std::string> base_;
};

}  // namespace OOXML

/// The targets of a relationships part by identifier.
class RelationshipTargets {
 public:
  /// Skips relationships without identifier or target. The gate has refused repeated identifiers.
  static RelationshipTargets read(XMLNode root);

  /// Returns nullopt if there is no such relationship. Valid while this lives.
  std::optional<std::string_view> find(std::string_view identifier) const;

 private:
  struct Entry {
    std::string identifier;
    std::string target;
  };
  std::vector<Entry> entries_;  ///< sorted by identifier
};

}  // namespace zelvo
