#include "DocumentRuntime/Research/DeliveryVerification.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Research/DeliveredChart.hpp"
#include "DocumentRuntime/Research/DeliveredPackage.hpp"
#include "DocumentRuntime/Research/ResearchRule.hpp"
#include "DocumentRuntime/Research/SlideText.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;
using Slide = ResearchPresentation::Slide;
using Record = ResearchSourceScope::Record;

constexpr const char* contentMessage = "Slide content did not survive delivery.";
constexpr const char* identityMessage = "Slide source identities did not survive delivery.";
constexpr const char* observationMessage =
    "Trusted source coverage and observation time did not survive presentation delivery.";

constexpr const char* chartMessage = "Slide chart data did not survive delivery.";

/// Whether a text is there as slides show it, without the characters that XML cannot carry.
bool isDelivered(std::string_view found, std::string_view wanted) {
  return OOXML::escaped(found) == OOXML::escaped(SlideText::flattened(wanted));
}

/// What a shape says of itself.
std::string_view attributeOf(XMLNode shape, std::string_view attribute) {
  const XMLElements properties = shape.descendants("cNvPr");
  if (properties.empty()) return {};
  return (*properties.begin()).attribute(attribute).value_or("");
}

/// The only shape of that name; none where there are more or fewer.
std::optional<XMLNode> shapeNamed(XMLNode slide, std::string_view name) {
  std::optional<XMLNode> found;
  for (const XMLNode shape : slide.descendants("sp")) {
    if (attributeOf(shape, "name") != name) continue;
    if (found) return std::nullopt;
    found = shape;
  }
  return found;
}

/// The texts of a shape's paragraphs; none where one is not a single run or field.
std::optional<std::vector<std::string>> paragraphsOf(XMLNode shape) {
  std::vector<std::string> texts;
  for (const XMLNode paragraph : shape.descendants("p")) {
    const XMLElements runs = paragraph.descendants("t");
    if (runs.size() != 1) return std::nullopt;
    texts.push_back((*runs.begin()).content());
  }
  return texts;
}

void verifyContent(XMLNode slide, const Slide& wanted, std::size_t number) {
  const auto shows = [&](std::string_view name, const std::vector<std::string>& texts) {
    const auto shape = shapeNamed(slide, name);
    const auto paragraphs = shape ? paragraphsOf(*shape) : std::nullopt;
    return paragraphs && std::ranges::equal(*paragraphs, texts, isDelivered);
  };
  require(shows("Title", {wanted.title}) && shows("Points", wanted.body) &&
              shows("Slide number", {std::to_string(number)}),
          contentMessage);
}

/// A source as the footer has it.
struct DeliveredSource {
  std::string shown;
  std::string identity;
};

/// The sources of a slide in their order. Throws where there are not so many, or one has no line to itself.
std::vector<DeliveredSource> deliveredSources(XMLNode slide, std::size_t count) {
  const auto isSource = [](XMLNode shape) { return attributeOf(shape, "name").starts_with("Source "); };
  const XMLElements shapes = slide.descendants("sp");
  require(std::cmp_equal(std::count_if(shapes.begin(), shapes.end(), isSource), count), identityMessage);
  std::vector<DeliveredSource> sources;
  for (std::size_t i = 0; i < count; ++i) {
    const auto shape = shapeNamed(slide, "Source " + std::to_string(i + 1));
    const auto shown = shape ? paragraphsOf(*shape) : std::nullopt;
    require(shown && shown->size() == 1 && !shown->front().empty(), identityMessage);
    sources.push_back({.shown = shown->front(), .identity = std::string(attributeOf(*shape, "descr"))});
  }
  return sources;
}

void verifyRecords(XMLNode slide, const std::vector<Record>& records) {
  const auto sources = deliveredSources(slide, records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    require(sources[i].identity.starts_with(records[i].id + " | "), identityMessage);
    require(isDelivered(sources[i].identity, records[i].metadata()) &&
                sources[i].shown.ends_with(" · " + records[i].observedUTC()),
            observationMessage);
  }
}

/// Without a scope nothing is known of a source but how the slide names it.
void verifyNames(XMLNode slide, const Slide& wanted) {
  std::vector<std::string> names = wanted.sources;
  if (wanted.sourceIDs) names.insert(names.end(), wanted.sourceIDs->begin(), wanted.sourceIDs->end());
  const auto sources = deliveredSources(slide, names.size());
  for (std::size_t i = 0; i < names.size(); ++i)
    require(isDelivered(sources[i].identity, names[i]), identityMessage);
}

void verifyCharts(const DeliveredPackage& package, const ResearchPresentation& presentation,
                  const std::stop_token& stop) {
  const auto bindings = presentation.resolvedChartBindings();
  auto binding = bindings.begin();
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    const bool isWanted = presentation.slides[i].namedChart().has_value();
    require(package.showsChart(i) == isWanted, chartMessage);
    if (!isWanted) continue;
    const auto chart = package.chartOf(i);
    require(chart.has_value(), chartMessage);
    verifyDeliveredChart(chart->chartSpace, *chart->workbook, *binding++, stop);
  }
}

}  // namespace

void verifyDelivery(ByteView deck, const ResearchPresentation& presentation,
                    const std::optional<ResearchSourceScope>& scope, const std::stop_token& stop) {
  const DeliveredPackage package(deck, stop);
  require(package.slides().size() == presentation.slides.size(), "A slide is missing.");
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    const XMLNode slide = package.slides()[i];
    const Slide& wanted = presentation.slides[i];
    verifyContent(slide, wanted, i + 1);
    if (scope) {
      verifyRecords(slide, ResearchPresentation::sourceRecords(wanted, scope));
    } else {
      verifyNames(slide, wanted);
    }
  }
  verifyCharts(package, presentation, stop);
}

}  // namespace zelvo
