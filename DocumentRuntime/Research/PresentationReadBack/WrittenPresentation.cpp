#include "DocumentRuntime/Research/PresentationReadBack/WrittenPresentation.hpp"

#include <utility>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"

namespace zelvo {
namespace {

constexpr const char* presentationName = "ppt/presentation.xml";

std::string_view relationshipID(XMLNode node) {
  return node.attribute("r:id").value_or("");
}

}  // namespace

WrittenPresentation::WrittenPresentation(ByteView deck, const std::stop_token& stop)
    : parts_(OOXML::package(deck, {.researchChartWorkbooks = true}, {}, stop)) {
  const auto presentation = parsed(presentationName);
  const auto list = presentation ? presentation->root().child("sldIdLst") : std::nullopt;
  if (!list) return;
  std::vector<std::string_view> identifiers;
  for (const XMLNode entry : list->all("sldId"))
    identifiers.push_back(relationshipID(entry));
  for (auto& name : related(presentationName, identifiers)) {
    if (name && parts_.contains(*name)) slideNames_.push_back(*std::move(name));
  }
}

std::string WrittenPresentation::title() const {
  const auto relationships = parsed("_rels/.rels");
  for (const XMLNode relationship : relationships->root().all("Relationship")) {
    if (!relationship.attribute("Type").value_or("").ends_with("/metadata/core-properties")) continue;
    const auto properties =
        parsed(OOXML::resolve(relationship.attribute("Target").value_or(""), "_rels/.rels"));
    const auto title = properties ? properties->root().child("title") : std::nullopt;
    if (title) return title->content();
  }
  return {};
}

WrittenPresentation::Slide WrittenPresentation::slide(std::size_t index) const {
  const std::string& name = slideNames_[index];
  return {.name = name, .tree = OOXML::xml(*parts_.find(name))};
}

bool WrittenPresentation::Slide::showsChart() const {
  return !root().descendants("chart").empty();
}

std::optional<std::string> WrittenPresentation::chartName(const Slide& slide) const {
  const XMLElements charts = slide.root().descendants("chart");
  if (charts.size() != 1) return std::nullopt;
  return related(slide.name, {relationshipID(*charts.begin())}).front();
}

std::optional<WrittenPresentation::Chart> WrittenPresentation::chart(const std::string& name) const {
  auto tree = parsed(name);
  const auto data = tree ? tree->root().child("externalData") : std::nullopt;
  if (!data) return std::nullopt;
  const auto workbookName = related(name, {relationshipID(*data)}).front();
  const ByteBuffer* workbook = workbookName ? parts_.find(*workbookName) : nullptr;
  if (workbook == nullptr) return std::nullopt;
  return Chart{.tree = *std::move(tree), .workbook = workbook};
}

std::optional<XMLTree> WrittenPresentation::parsed(std::string_view name) const {
  const ByteBuffer* part = parts_.find(name);
  if (part == nullptr) return std::nullopt;
  return OOXML::xml(*part);
}

std::vector<std::optional<std::string>> WrittenPresentation::related(
    const std::string& name, const std::vector<std::string_view>& identifiers) const {
  std::vector<std::optional<std::string>> names(identifiers.size());
  const std::string relationships = OOXML::relationshipsPart(name);
  const auto list = parsed(relationships);
  if (!list) return names;
  const auto targets = RelationshipTargets::read(list->root());
  for (std::size_t i = 0; i < identifiers.size(); ++i) {
    if (const auto target = targets.find(identifiers[i])) names[i] = OOXML::resolve(*target, relationships);
  }
  return names;
}

}  // namespace zelvo
