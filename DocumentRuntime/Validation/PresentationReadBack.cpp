#include "DocumentRuntime/Validation/PresentationReadBack.hpp"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Validation/ChartReadBack.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"

namespace zelvo {
namespace {

constexpr std::string_view presentationNamespace =
    "http://schemas.openxmlformats.org/presentationml/2006/main";
constexpr std::string_view presentationRelationships = "ppt/_rels/presentation.xml.rels";
constexpr std::size_t maximumSlides = 21;  ///< 20 with the table, one with the chart

/// All parts but the slides, sorted.
constexpr std::array<std::string_view, 12> presentationParts = {
    "[Content_Types].xml",
    "_rels/.rels",
    presentationRelationships,
    "ppt/charts/_rels/chart1.xml.rels",
    chartPartName,
    chartWorkbookName,
    presentationPartName,
    "ppt/slideLayouts/_rels/slideLayout1.xml.rels",
    "ppt/slideLayouts/slideLayout1.xml",
    "ppt/slideMasters/_rels/slideMaster1.xml.rels",
    "ppt/slideMasters/slideMaster1.xml",
    "ppt/theme/theme1.xml",
};
static_assert(std::ranges::is_sorted(presentationParts));

bool dropPrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

/// ppt/slides/slideN.xml, and its relationships in the folder's _rels, N having no leading zero. Either
/// ending goes with either folder.
bool isSlidePart(std::string_view name) {
  if (!dropPrefix(name, "ppt/slides/")) return false;
  dropPrefix(name, "_rels/");
  if (!dropPrefix(name, "slide") || name.empty() || name.front() < '1' || name.front() > '9') return false;
  name.remove_prefix(std::min(name.find_first_not_of("0123456789"), name.size()));
  return name == ".xml" || name == ".xml.rels";
}

void checkParts(const PartMap& parts) {
  for (const Part& part : parts) {
    if (!std::ranges::binary_search(presentationParts, part.name) && !isSlidePart(part.name)) {
      throw DocumentError::validationFailed("unexpected presentation package part");
    }
  }
}

/// The names of the slide parts in the order of the show.
std::vector<std::string> slideParts(const GeneratedPackage& package) {
  const DocumentError failure = DocumentError::validationFailed("presentation slides");
  const auto presentation = package.parsed(presentationPartName);
  const XMLNode root = presentation.root();
  const auto list = root.child("sldIdLst");
  if (root.name() != "presentation" || root.attribute("xmlns:p") != presentationNamespace || !list ||
      list->children().empty() || list->children().size() > maximumSlides) {
    throw DocumentError(failure);
  }
  if (!package.contains(presentationRelationships)) throw DocumentError(failure);
  const auto relationships = package.parsed(presentationRelationships);
  const auto targets = RelationshipTargets::read(relationships.root());

  std::vector<std::string> names;
  std::set<std::string> seen;
  for (const XMLNode slide : root.descendants("sldId")) {
    const auto identifier = slide.attribute("r:id");
    const auto target = identifier ? targets.find(*identifier) : std::nullopt;
    if (!target) throw DocumentError(failure);
    std::string name = OOXML::resolve(*target, presentationRelationships);
    if (!seen.insert(name).second) throw DocumentError::validationFailed("duplicate slide");
    names.push_back(std::move(name));
  }
  return names;
}

/// Adds one slide's rows to the table, its header only if it is the first.
void joinSlide(TableTexts& joined, XMLNode slide, bool hasChartPart) {
  if (slide.name() != "sld") throw DocumentError::validationFailed("slide root");
  const XMLElements tables = slide.descendants("tbl");
  if (tables.empty() && hasChartPart && !slide.descendants("chart").empty()) return;
  TableTexts rows;
  for (const XMLNode table : tables)
    appendTableTexts(rows, table);
  if (rows.empty() || (!joined.empty() && rows.front() != joined.front())) {
    throw DocumentError::validationFailed("repeated table header");
  }
  const auto firstNew = rows.begin() + (joined.empty() ? 0 : 1);
  joined.insert(joined.end(), std::make_move_iterator(firstNew), std::make_move_iterator(rows.end()));
}

}  // namespace

TableTexts readPresentation(const GeneratedPackage& package, const SourceTable* expectedTable,
                            const ChartSelection* expectedChart, const std::stop_token& stop) {
  checkParts(package.parts());
  const bool hasChart = package.contains(chartPartName);
  TableTexts rows;
  for (const std::string& name : slideParts(package)) {
    throwIfCancelled(stop);
    joinSlide(rows, package.parsed(name).root(), hasChart);
  }

  const bool hasWorkbook = package.contains(chartWorkbookName);
  if (hasChart != hasWorkbook || (!hasChart && expectedChart != nullptr)) {
    throw DocumentError::validationFailed("missing chart or orphaned chart workbook");
  }
  if (hasChart && expectedChart == nullptr) throw DocumentError::validationFailed("unexpected chart");
  if (hasChart) validateChartPackage(package, expectedTable, *expectedChart, stop);
  return rows;
}

}  // namespace zelvo
