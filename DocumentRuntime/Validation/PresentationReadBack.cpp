#include "DocumentRuntime/Validation/PresentationReadBack.hpp"

#include <algorithm>
#include <array>
#include <optional>
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

/// The part that an entry of the slide list leads to.
std::string slidePart(XMLNode entry, const RelationshipTargets& targets) {
  const auto identifier = entry.attribute("r:id");
  const auto target = identifier ? targets.find(*identifier) : std::nullopt;
  if (!target) throw DocumentError::validationFailed("presentation slides");
  return OOXML::resolve(*target, presentationRelationships);
}

/// A slide's tables, whose rows follow each other. Owns what its rows refer to.
class Slide {
 public:
  Slide(const GeneratedPackage& package, std::string_view name)
      : part_(package.parsed(name)), contents_(part_.root()) {}

  XMLNode root() const { return part_.root(); }
  XMLElements tables() const { return root().descendants("tbl"); }

  /// The first row of all; none where there is none.
  std::optional<TableRow> header() const {
    for (const XMLNode table : tables()) {
      if (const auto row = table.child("tr")) return TableRow{*row, contents_};
    }
    return std::nullopt;
  }

  /// Adds all rows, or all but the header.
  void addRows(TableReadBack& result, bool withHeader) const {
    for (const XMLNode table : tables()) {
      for (const XMLNode row : table.all("tr")) {
        if (withHeader) result.add({row, contents_});
        withHeader = true;
      }
    }
  }

 private:
  GeneratedPackage::ParsedPart part_;
  XMLContents contents_;
};

/// Joins the tables of the slides, in slide order, into one, whose header each of them repeats.
void readSlides(const GeneratedPackage& package, TableReadBack& table, const std::stop_token& stop) {
  const auto presentation = package.parsed(presentationPartName);
  const XMLNode root = presentation.root();
  const auto list = root.child("sldIdLst");
  if (root.name() != "presentation" || root.attribute("xmlns:p") != presentationNamespace || !list ||
      list->children().empty() || list->children().size() > maximumSlides ||
      !package.contains(presentationRelationships)) {
    throw DocumentError::validationFailed("presentation slides");
  }
  const auto targets = RelationshipTargets::read(package.parsed(presentationRelationships).root());

  const bool hasChartPart = package.contains(chartPartName);
  std::optional<Slide> first;  // kept for its header
  std::set<std::string> seen;
  for (const XMLNode entry : root.descendants("sldId")) {
    throwIfCancelled(stop);
    const std::string name = slidePart(entry, targets);
    if (!seen.insert(name).second) throw DocumentError::validationFailed("duplicate slide");
    Slide slide(package, name);
    if (slide.root().name() != "sld") throw DocumentError::validationFailed("slide root");
    // A chart's slide has no table to join.
    if (slide.tables().empty() && hasChartPart && !slide.root().descendants("chart").empty()) continue;
    const auto header = slide.header();
    if (!header || (first && !showSameTexts(*first->header(), *header))) {
      throw DocumentError::validationFailed("repeated table header");
    }
    slide.addRows(table, !first);
    if (!first) first = std::move(slide);
  }
}

}  // namespace

void readPresentation(const GeneratedPackage& package, TableReadBack& table, const SourceTable* expectedTable,
                      const ChartSelection* expectedChart, const std::stop_token& stop) {
  checkParts(package.parts());
  readSlides(package, table, stop);

  const bool hasChart = package.contains(chartPartName);
  const bool hasWorkbook = package.contains(chartWorkbookName);
  if (hasChart != hasWorkbook || (!hasChart && expectedChart != nullptr)) {
    throw DocumentError::validationFailed("missing chart or orphaned chart workbook");
  }
  if (hasChart && expectedChart == nullptr) throw DocumentError::validationFailed("unexpected chart");
  if (hasChart) validateChartPackage(package, expectedTable, *expectedChart, stop);
}

}  // namespace zelvo
