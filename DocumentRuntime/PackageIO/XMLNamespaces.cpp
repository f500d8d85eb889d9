#include "DocumentRuntime/PackageIO/XMLNamespaces.hpp"

#include <optional>
#include <utility>

namespace zelvo::OOXML {
namespace {

constexpr std::pair<std::string_view, Namespace> knownNamespaces[] = {
    {"http://schemas.openxmlformats.org/spreadsheetml/2006/main", Namespace::main},
    {"http://purl.oclc.org/ooxml/spreadsheetml/main", Namespace::strictMain},
    {"http://schemas.openxmlformats.org/officeDocument/2006/relationships", Namespace::relationshipIDs},
    {"http://purl.oclc.org/ooxml/officeDocument/relationships", Namespace::strictRelationshipIDs},
    {"http://schemas.openxmlformats.org/package/2006/relationships", Namespace::packageRelationships},
    {"http://schemas.openxmlformats.org/package/2006/content-types", Namespace::contentTypes},
    {"http://schemas.openxmlformats.org/markup-compatibility/2006", Namespace::compatibility},
};

constexpr std::string_view declarationName = "xmlns";

Namespace namespaceOf(std::string_view uri) {
  if (uri.empty()) return Namespace::none;
  for (const auto& [known, space] : knownNamespaces) {
    if (known == uri) return space;
  }
  return Namespace::other;
}

/// The prefix that an attribute declares, empty for the default namespace. Returns nullopt for other
/// attributes.
std::optional<std::string_view> declaredPrefix(std::string_view attributeName) {
  // Most attributes declare nothing: their first letter tells.
  if (attributeName.front() != declarationName.front() || !attributeName.starts_with(declarationName)) {
    return std::nullopt;
  }
  const std::string_view rest = attributeName.substr(declarationName.size());
  if (rest.empty()) return rest;
  if (rest.size() < 2 || rest.front() != ':') return std::nullopt;
  return rest.substr(1);
}

/// The position of the first colon, or npos. Names are too short for a call of the library to pay.
std::size_t findColon(std::string_view name) {
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == ':') return i;
  }
  return std::string_view::npos;
}

}  // namespace

NamespaceScope::NamespaceScope(const NamespaceScope* parent, XMLNode element) : element_(element) {
  if (parent != nullptr) {
    declaringAncestor_ = parent->declares_ ? parent : parent->declaringAncestor_;
    default_ = parent->default_;
  }
  for (std::size_t i = 0; i < element.attributeCount(); ++i) {
    const auto prefix = declaredPrefix(element.attributeName(i));
    if (!prefix) continue;
    declares_ = true;
    if (prefix->empty()) default_ = namespaceOf(element.attributeValue(i));
  }
}

ExpandedName NamespaceScope::name() const {
  const std::string_view qualified = element_.qualifiedName();
  const std::size_t colon = findColon(qualified);
  if (colon == std::string_view::npos) return {default_, qualified};
  return {space(qualified.substr(0, colon)), qualified.substr(colon + 1)};
}

ExpandedName NamespaceScope::attributeName(std::size_t index) const {
  const std::string_view qualified = element_.attributeName(index);
  const std::size_t colon = findColon(qualified);
  if (colon != std::string_view::npos) {
    return {space(qualified.substr(0, colon)), qualified.substr(colon + 1)};
  }
  return {qualified == declarationName ? Namespace::other : Namespace::none, qualified};
}

Namespace NamespaceScope::space(std::string_view prefix) const {
  if (prefix == "xml") return Namespace::xml;
  if (prefix.empty()) return Namespace::other;
  for (const NamespaceScope* scope = this; scope != nullptr; scope = scope->declaringAncestor_) {
    for (std::size_t i = 0; i < scope->element_.attributeCount(); ++i) {
      if (declaredPrefix(scope->element_.attributeName(i)) == prefix)
        return namespaceOf(scope->element_.attributeValue(i));
    }
  }
  return Namespace::other;
}

}  // namespace zelvo::OOXML
