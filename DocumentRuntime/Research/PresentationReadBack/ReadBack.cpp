#include "DocumentRuntime/Research/PresentationReadBack/ReadBack.hpp"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Rules.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/Chart.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/WrittenPresentation.hpp"

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

bool isShown(std::string_view found, std::string_view expected) {
  return found == ReadBackTexts::onSlide(expected);
}

/// An attribute of a shape's non-visual properties; empty if it is missing.
std::string_view attributeOf(XMLNode shape, std::string_view attribute) {
  const XMLElements properties = shape.descendants("cNvPr");
  if (properties.empty()) return {};
  return (*properties.begin()).attribute(attribute).value_or("");
}

/// The only shape of that name. Returns nullopt if there is not exactly one.
std::optional<XMLNode> shapeNamed(XMLNode slide, std::string_view name) {
  std::optional<XMLNode> found;
  for (const XMLNode shape : slide.descendants("sp")) {
    if (attributeOf(shape, "name") != name) continue;
    if (found) return std::nullopt;
    found = shape;
  }
  return found;
}

/// The shapes whose names start like that, in document order.
std::vector<XMLNode> shapesNamed(XMLNode slide, std::string_view start) {
  std::vector<XMLNode> found;
  for (const XMLNode shape : slide.descendants("sp")) {
    if (attributeOf(shape, "name").starts_with(start)) found.push_back(shape);
  }
  return found;
}

/// Whether these shapes have these texts, each a paragraph of a single run or field. A shape has at least
/// one.
bool hold(const std::vector<XMLNode>& shapes, const std::vector<std::string>& expected) {
  auto text = expected.begin();
  for (const XMLNode shape : shapes) {
    if (shape.descendants("p").empty()) return false;
    for (const XMLNode paragraph : shape.descendants("p")) {
      const XMLElements runs = paragraph.descendants("t");
      if (text == expected.end() || runs.size() != 1 || !isShown((*runs.begin()).content(), *text++))
        return false;
    }
  }
  return text == expected.end();
}

/// The points are in one shape or in several. The cover has no number.
void checkContent(XMLNode slide, const Slide& expected, std::size_t number) {
  const auto shows = [&](std::string_view name, const std::vector<std::string>& texts) {
    return hold(shapesNamed(slide, name), texts);
  };
  require(shows("Title", {expected.title}) && shows("Point", expected.body), contentMessage);
  const std::vector<std::string> numbers = {std::to_string(number)};
  require(shows("Slide number", number == 1 ? std::vector<std::string>() : numbers), contentMessage);
}

/// A source in the footer.
struct FooterSource {
  std::string shown;
  std::string identity;
};

/// The text of a shape's one paragraph. Returns nullopt if there is not exactly one, or if it is not a single
/// run.
std::optional<std::string> textOf(XMLNode shape) {
  const XMLElements paragraphs = shape.descendants("p");
  const XMLElements runs = shape.descendants("t");
  if (paragraphs.size() != 1 || runs.size() != 1) return std::nullopt;
  return (*runs.begin()).content();
}

/// The sources of a slide in order. Throws if there are not `count`, if one has no line of its own, or if the
/// word that introduces them is wrong.
std::vector<FooterSource> footerSources(XMLNode slide, std::size_t count) {
  std::vector<std::string> introduction;
  if (count > 0) introduction = {count == 1 ? "Source" : "Sources"};
  require(shapesNamed(slide, "Source ").size() == count && hold(shapesNamed(slide, "Sources"), introduction),
          identityMessage);
  std::vector<FooterSource> sources;
  for (std::size_t i = 0; i < count; ++i) {
    const auto shape = shapeNamed(slide, "Source " + std::to_string(i + 1));
    const auto shown = shape ? textOf(*shape) : std::nullopt;
    require(shown && !shown->empty(), identityMessage);
    sources.push_back({.shown = *shown, .identity = std::string(attributeOf(*shape, "descr"))});
  }
  return sources;
}

void checkRecords(XMLNode slide, const std::vector<Record>& records) {
  const auto sources = footerSources(slide, records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    require(sources[i].identity.starts_with(records[i].id + " | "), identityMessage);
    require(isShown(sources[i].identity, records[i].metadata()) &&
                sources[i].shown.ends_with(" · " + ReadBackTexts::observation(records[i].observedAt)),
            observationMessage);
  }
}

/// Without a scope only the name of a source is known; a repeated name has one line.
void checkNames(XMLNode slide, const Slide& expected) {
  std::vector<std::string> names = expected.sources;
  if (expected.sourceIDs) names.insert(names.end(), expected.sourceIDs->begin(), expected.sourceIDs->end());
  for (auto name = names.begin(); name != names.end();)
    name = std::find(names.begin(), name, *name) == name ? name + 1 : names.erase(name);
  const auto sources = footerSources(slide, names.size());
  for (std::size_t i = 0; i < names.size(); ++i)
    require(isShown(sources[i].identity, names[i]), identityMessage);
}

/// The chart of a slide.
struct ShownChart {
  bool isShown;
  std::optional<std::string> part;
};

/// No two slides may share a chart part.
void checkCharts(const WrittenPresentation& package, const std::vector<ShownChart>& charts,
                 const ResearchPresentation& presentation, const std::stop_token& stop) {
  const auto bindings = presentation.resolvedChartBindings();
  auto binding = bindings.begin();
  std::set<std::string> compared;
  for (std::size_t i = 0; i < charts.size(); ++i) {
    const bool isExpected = presentation.slides[i].namedChart().has_value();
    require(charts[i].isShown == isExpected, chartMessage);
    if (!isExpected) continue;
    require(charts[i].part.has_value() && compared.insert(*charts[i].part).second, chartMessage);
    const auto chart = package.chart(*charts[i].part);
    require(chart.has_value(), chartMessage);
    readBackSlideChart(chart->tree.root(), *chart->workbook, *binding, stop);
    ++binding;
  }
}

}  // namespace

void readBackResearchPresentation(ByteView deck, const ResearchPresentation& presentation,
                                  const std::optional<ResearchSourceScope>& scope,
                                  const std::stop_token& stop) {
  const WrittenPresentation package(deck, stop);
  require(package.slideCount() == presentation.slides.size(), "A slide is missing.");
  require(isShown(package.title(), presentation.title), contentMessage);
  std::vector<ShownChart> charts;
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    const auto slide = package.slide(i);
    const Slide& expected = presentation.slides[i];
    checkContent(slide.root(), expected, i + 1);
    if (scope) {
      checkRecords(slide.root(), ResearchPresentation::sourceRecords(expected, scope));
    } else {
      checkNames(slide.root(), expected);
    }
    charts.push_back({.isShown = slide.showsChart(), .part = package.chartName(slide)});
  }
  checkCharts(package, charts, presentation, stop);
}

}  // namespace zelvo
