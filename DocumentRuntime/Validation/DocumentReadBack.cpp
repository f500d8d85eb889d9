#include "DocumentRuntime/Validation/DocumentReadBack.hpp"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/Validation/ChartReadBack.hpp"
#include "Text/ASCII.hpp"

namespace zelvo {
namespace {

constexpr std::string_view wordNamespace = "http://schemas.openxmlformats.org/wordprocessingml/2006/main";

/// Sorted.
constexpr std::array<std::string_view, 3> wordParts = {"[Content_Types].xml", "_rels/.rels", wordPartName};

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

/// ppt/slides/slideN.xml and the relationships in ppt/slides/_rels, where N has no leading zero. Both folders
/// accept both extensions.
bool isSlidePart(std::string_view name) {
  if (!ASCII::takePrefix(name, "ppt/slides/")) return false;
  ASCII::takePrefix(name, "_rels/");
  if (!ASCII::takePrefix(name, "slide") || name.empty() || name.front() < '1' || name.front() > '9')
    return false;
  while (!name.empty() && ASCII::isDigit(name.front()))
    name.remove_prefix(1);
  return name == ".xml" || name == ".xml.rels";
}

void checkParts(const PartMap& parts) {
  for (const Part& part : parts) {
    if (!std::ranges::binary_search(presentationParts, part.name) && !isSlidePart(part.name)) {
      throw DocumentError::validationFailed("unexpected presentation package part");
    }
  }
}

/// The part that an entry of the slide list refers to.
std::string slidePart(XMLNode entry, const RelationshipTargets& targets) {
  const auto identifier = entry.attribute("r:id");
  const auto target = identifier ? targets.find(*identifier) : std::nullopt;
  if (!target) throw DocumentError::validationFailed("presentation slides");
  return OOXML::resolve(*target, presentationRelationships);
}

/// The tables of a slide, read as one. Owns the texts that its rows refer to.
class Slide {
 public:
  Slide(const GeneratedPackage& package, std::string_view name)
      : part_(package.parsed(name)), contents_(part_.root()) {}

  XMLNode root() const { return part_.root(); }
  XMLElements tables() const { return root().descendants("tbl"); }

  /// The first row of all tables. Returns nullopt if there is none.
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

/// Joins the tables of the slides, in slide order. Each slide repeats the header.
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
    // The slide with the chart has no table.
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

void readWord(const GeneratedPackage& package, TableReadBack& table) {
  if (!std::ranges::equal(package.parts(), wordParts, {}, &Part::name)) {
    throw DocumentError::validationFailed("unexpected Word package part");
  }
  const auto document = package.parsed(wordPartName);
  const XMLNode root = document.root();
  const auto body = root.child("body");
  const auto wordTable = body ? body->descendants("tbl").only() : std::nullopt;
  if (root.name() != "document" || root.attribute("xmlns:w") != wordNamespace || !wordTable) {
    throw DocumentError::validationFailed("Word table");
  }
  const XMLContents contents(root);
  for (const XMLNode row : wordTable->all("tr"))
    table.add({row, contents});
}

void readPresentation(const GeneratedPackage& package, TableReadBack& table, const SourceTable* expectedTable,
                      const ChartSelection* expectedChart, const std::stop_token& stop) {
  checkParts(package.parts());
  readSlides(package, table, stop);

  const bool hasChart = package.contains(chartPartName);
  const bool hasWorkbook = package.contains(chartWorkbookName);
  if (hasChart != hasWorkbook || (!hasChart && expectedChart != nullptr)) {
    throw DocumentError::validationFailed(RefusalDetail::missingChart);
  }
  if (hasChart && expectedChart == nullptr)
    throw DocumentError::validationFailed(RefusalDetail::unexpectedChart);
  if (hasChart) validateChartPackage(package, expectedTable, *expectedChart, stop);
}

}  // namespace zelvo
