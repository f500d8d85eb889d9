#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cleaning/AllowList.hpp"
#include "DocumentRuntime/Cleaning/Findings.hpp"
#include "DocumentRuntime/PackageIO/XMLNamespaces.hpp"

namespace zelvo::Cleaning {

using OOXML::NamespaceScope;

/// The attributes of an element that the allow-list has. An optional one with an invalid value is dropped and
/// counted. A required one with an invalid value is returned by `refused()`. Keeps views into the tree.
class KeptAttributes {
 public:
  KeptAttributes(const NamespaceScope& element, Tag tag, Findings& findings);

  std::optional<std::string_view> operator[](Attribute attribute) const;
  bool isSet(Attribute flag) const;
  std::optional<Attribute> refused() const { return refused_; }

 private:
  std::array<Attribute, maximumRules> attributes_;
  std::array<std::string_view, maximumRules> values_;
  std::size_t count_ = 0;
  std::optional<Attribute> refused_;
};

[[noreturn]] void refuseElement(std::string_view problem, std::string_view name, const std::string& place);
[[noreturn]] void refuseAttribute(Attribute attribute, const std::string& place);

/// The namespace of a part's root, which must have that local name in the main namespace. Throws
/// `DocumentError` unsupported "root element of PLACE".
OOXML::Namespace mainNamespace(const NamespaceScope& root, std::string_view localName,
                               std::string_view place);

/// Counts a child without a rule, or returns `refused`.
enum class OtherChild : std::uint8_t { counted, refused };
OtherChild handleOtherChild(const NamespaceScope& child, const ElementRule& parent, OOXML::Namespace main,
                            Findings& findings);

/// Calls take(scope, tag) for every child that the allow-list has, in document order. Other children are
/// counted, or refused if they could carry a value. `place()` returns the element's location for errors.
/// Throws `DocumentError` unsupported "unknown element in PLACE" or invalidArchive "repeated element NAME in
/// PLACE".
template <typename Place, typename Take>
void eachChild(const NamespaceScope& element, Tag tag, OOXML::Namespace main, Findings& findings,
               const Place& place, const Take& take) {
  const ElementRule& parent = rule(tag);
  std::uint64_t met = 0;
  static_assert(tagCount <= 64);
  for (const XMLNode child : element.element().children()) {
    const NamespaceScope scope(element, child);
    const auto [space, local] = scope.name();
    const ElementRule* const known = space == main ? childRule(tag, local) : nullptr;
    if (known == nullptr) {
      if (handleOtherChild(scope, parent, main, findings) == OtherChild::refused)
        refuseElement("unknown element", {}, place());
      continue;
    }
    const std::uint64_t bit = std::uint64_t{1} << static_cast<unsigned>(known->tag);
    if (known->isUnique && (met & bit) != 0) refuseElement("repeated element", known->name, place());
    met |= bit;
    take(scope, known->tag);
  }
}

}  // namespace zelvo::Cleaning
