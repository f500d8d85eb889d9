#include "DocumentRuntime/Research/DeliveredPackage.hpp"

#include <utility>

#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"

namespace zelvo {
namespace {

constexpr const char* presentationName = "ppt/presentation.xml";

/// Where the relationships of a part stand.
std::string relationshipsOf(const std::string& name) {
  const std::size_t file = name.rfind('/') + 1;
  return name.substr(0, file) + "_rels/" + name.substr(file) + ".rels";
}

}  // namespace

DeliveredPackage::DeliveredPackage(ByteView deck, const std::stop_token& stop)
    : parts_(OOXML::package(
          deck, {.researchChartWorkbooks = true},
          [this](std::string_view name, XMLTree& tree) { trees_.emplace(name, std::move(tree)); }, stop)) {
  const auto presentation = root(presentationName);
  const auto list = presentation ? presentation->child("sldIdLst") : std::nullopt;
  if (!list) return;
  for (const XMLNode entry : list->all("sldId")) {
    const auto name = related(presentationName, entry.attribute("r:id").value_or(""));
    const auto slide = name ? root(*name) : std::nullopt;
    if (!slide) continue;
    slideNames_.push_back(*name);
    slides_.push_back(*slide);
  }
}

std::optional<XMLNode> DeliveredPackage::root(std::string_view name) const {
  const auto tree = trees_.find(name);
  if (tree == trees_.end()) return std::nullopt;
  return tree->second.root();
}

std::optional<std::string> DeliveredPackage::related(const std::string& name,
                                                     std::string_view identifier) const {
  const std::string relationships = relationshipsOf(name);
  const auto list = root(relationships);
  if (!list) return std::nullopt;
  const auto targets = RelationshipTargets::read(*list);
  const auto target = targets.find(identifier);
  if (!target) return std::nullopt;
  return OOXML::resolve(*target, relationships);
}

bool DeliveredPackage::showsChart(std::size_t slide) const {
  return !slides_[slide].descendants("chart").empty();
}

std::optional<DeliveredPackage::Chart> DeliveredPackage::chartOf(std::size_t slide) const {
  const XMLElements charts = slides_[slide].descendants("chart");
  if (charts.size() != 1) return std::nullopt;
  const auto name = related(slideNames_[slide], (*charts.begin()).attribute("r:id").value_or(""));
  const auto chartSpace = name ? root(*name) : std::nullopt;
  const auto data = chartSpace ? chartSpace->child("externalData") : std::nullopt;
  if (!data) return std::nullopt;
  const auto workbookName = related(*name, data->attribute("r:id").value_or(""));
  const ByteBuffer* workbook = workbookName ? parts_.find(*workbookName) : nullptr;
  if (workbook == nullptr) return std::nullopt;
  return Chart{.chartSpace = *chartSpace, .workbook = workbook};
}

}  // namespace zelvo
