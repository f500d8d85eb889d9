#include "DocumentRuntime/Research/DeliveryVerification.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/PackageIO/PartWriting.hpp"
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

/// Whether a shape's paragraphs are these texts, each in a single run or field. They are compared as they
/// come; none is kept.
bool holds(XMLNode shape, const std::vector<std::string>& wanted) {
  const XMLElements paragraphs = shape.descendants("p");
  return std::equal(paragraphs.begin(), paragraphs.end(), wanted.begin(), wanted.end(),
                    [](XMLNode paragraph, const std::string& text) {
                      const XMLElements runs = paragraph.descendants("t");
                      return runs.size() == 1 && isDelivered((*runs.begin()).content(), text);
                    });
}

void verifyContent(XMLNode slide, const Slide& wanted, std::size_t number) {
  const auto shows = [&](std::string_view name, const std::vector<std::string>& texts) {
    const auto shape = shapeNamed(slide, name);
    return shape && holds(*shape, texts);
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

/// The text of a shape's one paragraph; none where there are more or fewer, or it is not a single run.
std::optional<std::string> textOf(XMLNode shape) {
  const XMLElements paragraphs = shape.descendants("p");
  const XMLElements runs = shape.descendants("t");
  if (paragraphs.size() != 1 || runs.size() != 1) return std::nullopt;
  return (*runs.begin()).content();
}

/// The sources of a slide in their order. Throws where there are not so many, or one has no line to itself.
std::vector<DeliveredSource> deliveredSources(XMLNode slide, std::size_t count) {
  const auto isSource = [](XMLNode shape) { return attributeOf(shape, "name").starts_with("Source "); };
  const XMLElements shapes = slide.descendants("sp");
  require(std::cmp_equal(std::count_if(shapes.begin(), shapes.end(), isSource), count), identityMessage);
  std::vector<DeliveredSource> sources;
  for (std::size_t i = 0; i < count; ++i) {
    const auto shape = shapeNamed(slide, "Source " + std::to_string(i + 1));
    const auto shown = shape ? textOf(*shape) : std::nullopt;
    require(shown && !shown->empty(), identityMessage);
    sources.push_back({.shown = *shown, .identity = std::string(attributeOf(*shape, "descr"))});
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

/// Without a scope nothing is known of a source but how the slide names it; a name that it repeats has one
/// line.
void verifyNames(XMLNode slide, const Slide& wanted) {
  std::vector<std::string> names = wanted.sources;
  if (wanted.sourceIDs) names.insert(names.end(), wanted.sourceIDs->begin(), wanted.sourceIDs->end());
  for (auto name = names.begin(); name != names.end();)
    name = std::find(names.begin(), name, *name) == name ? name + 1 : names.erase(name);
  const auto sources = deliveredSources(slide, names.size());
  for (std::size_t i = 0; i < names.size(); ++i)
    require(isDelivered(sources[i].identity, names[i]), identityMessage);
}

/// What a slide shows as a chart.
struct ShownChart {
  bool isShown;
  std::optional<std::string> part;
};

/// Slides may share a chart part: it is compared once for each chart that it is to show.
void verifyCharts(const DeliveredPackage& package, const std::vector<ShownChart>& charts,
                  const ResearchPresentation& presentation, const std::stop_token& stop) {
  const auto bindings = presentation.resolvedChartBindings();
  auto binding = bindings.begin();
  std::set<std::pair<std::string, std::int64_t>> verified;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const bool isWanted = presentation.slides[i].namedChart().has_value();
    require(charts[i].isShown == isWanted, chartMessage);
    if (!isWanted) continue;
    require(charts[i].part.has_value(), chartMessage);
    if (verified.emplace(*charts[i].part, binding->partNumber).second) {
      const auto chart = package.chart(*charts[i].part);
      require(chart.has_value(), chartMessage);
      verifyDeliveredChart(chart->tree.root(), *chart->workbook, *binding, stop);
    }
    ++binding;
  }
}

}  // namespace

void verifyDelivery(ByteView deck, const ResearchPresentation& presentation,
                    const std::optional<ResearchSourceScope>& scope, const std::stop_token& stop) {
  const DeliveredPackage package(deck, stop);
  require(package.slideCount() == presentation.slides.size(), "A slide is missing.");
  std::vector<ShownChart> charts;
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    const auto slide = package.slide(i);
    const Slide& wanted = presentation.slides[i];
    verifyContent(slide.root(), wanted, i + 1);
    if (scope) {
      verifyRecords(slide.root(), ResearchPresentation::sourceRecords(wanted, scope));
    } else {
      verifyNames(slide.root(), wanted);
    }
    charts.push_back({.isShown = slide.showsChart(), .part = package.chartName(slide)});
  }
  verifyCharts(package, charts, presentation, stop);
}

}  // namespace zelvo
