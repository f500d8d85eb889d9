#include "DocumentRuntime/Cleaning/ElementReader.hpp"

#include "DocumentRuntime/Cleaning/DroppedParts.hpp"
#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::Cleaning {
namespace {

using OOXML::Namespace;

constexpr std::string_view prefixedID = ":id";

/// Whether the i-th attribute of the element is the one of the rule.
bool isOf(const NamespaceScope& element, std::size_t index, const AttributeRule& rule) {
  const std::string_view qualified = element.element().attributeName(index);
  if (rule.attribute != Attribute::relationshipID) return qualified == name(rule.attribute);
  if (!qualified.ends_with(prefixedID)) return false;
  const auto [space, local] = element.attributeName(index);
  return local == "id" && (space == Namespace::relationshipIDs || space == Namespace::strictRelationshipIDs);
}

void count(const DroppedElement& dropped, XMLNode element, Findings& findings) {
  using Counts = DroppedElement::Counts;
  std::size_t number = 1;
  if (dropped.counts == Counts::children) number = element.children().size();
  if (dropped.counts == Counts::withChildren && element.children().empty()) number = 0;
  if (dropped.counts == Counts::withAttributes && element.attributeCount() == 0) number = 0;
  findings.add(dropped.kind, static_cast<std::int64_t>(number));
}

}  // namespace

KeptAttributes::KeptAttributes(const NamespaceScope& element, Tag tag, Findings& findings) {
  const XMLNode node = element.element();
  for (std::size_t i = 0; i < node.attributeCount(); ++i) {
    for (const auto& rule : rule(tag).attributes) {
      if (!rule) break;
      if (rule->use == Use::made || !isOf(element, i, *rule)) continue;
      const std::string_view value = node.attributeValue(i);
      // Two prefixes of one namespace can name the same attribute.
      const bool isRepeated = (*this)[rule->attribute].has_value();
      if (!isRepeated && matches(rule->grammar, value)) {
        attributes_[count_] = rule->attribute;
        values_[count_++] = value;
      } else if (!isRepeated && rule->use == Use::optional) {
        findings.add(CleaningKind::wrongAttributes);
      } else if (isRepeated || !refused_) {
        refused_ = rule->attribute;
      }
      break;
    }
  }
}

std::optional<std::string_view> KeptAttributes::operator[](Attribute attribute) const {
  for (std::size_t i = 0; i < count_; ++i) {
    if (attributes_[i] == attribute) return values_[i];
  }
  return std::nullopt;
}

bool KeptAttributes::isSet(Attribute flag) const {
  const auto value = (*this)[flag];
  return value == "1" || value == "true";
}

void refuseElement(std::string_view problem, std::string_view name, const std::string& place) {
  std::string detail(problem);
  if (!name.empty()) detail.append(" \"").append(name).append("\"");
  detail.append(" in ").append(place);
  // An unknown element is unsupported; a repeated one is invalid.
  throw name.empty() ? DocumentError::unsupported(std::move(detail))
                     : DocumentError::invalidArchive(std::move(detail));
}

void refuseAttribute(Attribute attribute, const std::string& place) {
  throw DocumentError::invalidArchive("attribute \"" + std::string(name(attribute)) + "\" in " + place);
}

Namespace mainNamespace(const NamespaceScope& root, std::string_view localName, std::string_view place) {
  const auto [space, local] = root.name();
  if (local != localName || (space != Namespace::main && space != Namespace::strictMain))
    throw DocumentError::unsupported(RefusalDetail::rootElement + std::string(place));
  return space;
}

OtherChild handleOtherChild(const NamespaceScope& child, const ElementRule& parent, Namespace main,
                            Findings& findings) {
  const auto [space, local] = child.name();
  if (parent.otherChildren == OtherChildren::allRefused) return OtherChild::refused;
  if (parent.otherChildren == OtherChildren::refused) {
    if (space != main || !isValueless(local)) return OtherChild::refused;
    if (local == "rPh") findings.add(CleaningKind::phoneticRuns);
    if (local == "extLst") findings.add(CleaningKind::extensionLists);
    return OtherChild::counted;
  }
  if (space == main) {
    if (const DroppedElement* const dropped = droppedElement(local))
      count(*dropped, child.element(), findings);
  } else {
    findings.add(space == Namespace::compatibility ? CleaningKind::alternateContent
                                                   : CleaningKind::foreignElements);
  }
  return OtherChild::counted;
}

}  // namespace zelvo::Cleaning
