#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::OOXML {

/// The namespaces that the readers of workbooks distinguish.
enum class Namespace : std::uint8_t {
  none,
  main,        ///< SpreadsheetML, Transitional
  strictMain,  ///< SpreadsheetML, Strict
  relationshipIDs,
  strictRelationshipIDs,
  packageRelationships,
  contentTypes,
  compatibility,  ///< markup compatibility: AlternateContent
  xml,
  other,  ///< any other, and undeclared prefixes
};

/// A name with its prefix resolved.
struct ExpandedName {
  Namespace space;
  std::string_view local;

  bool operator==(const ExpandedName&) const = default;
};

/// The namespace declarations in scope at one element. Created while descending a tree: the parent's scope
/// must outlive the child's, and the tree must outlive both.
class NamespaceScope {
 public:
  explicit NamespaceScope(XMLNode root) : NamespaceScope(nullptr, root) {}
  NamespaceScope(const NamespaceScope& parent, XMLNode element) : NamespaceScope(&parent, element) {}

  XMLNode element() const { return element_; }
  ExpandedName name() const;
  /// The name of the i-th attribute. One without a prefix is in no namespace. A declaration is in `other`.
  ExpandedName attributeName(std::size_t index) const;

 private:
  NamespaceScope(const NamespaceScope* parent, XMLNode element);
  Namespace space(std::string_view prefix) const;

  XMLNode element_;
  const NamespaceScope* declaringAncestor_ = nullptr;  ///< the nearest that declares a namespace
  Namespace default_ = Namespace::none;
  bool declares_ = false;
};

}  // namespace zelvo::OOXML
