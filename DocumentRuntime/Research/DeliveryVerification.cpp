#include "DocumentRuntime/Research/DeliveryVerification.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Research/DeliveredChart.hpp"
#include "DocumentRuntime/Research/DeliveredPackage.hpp"
#include "DocumentRuntime/Research/SlideText.hpp"

namespace zelvo {
namespace {

using Slide = ResearchPresentation::Slide;
using Record = ResearchSourceScope::Record;

constexpr const char* contentMessage = "Slide content did not survive delivery.";
constexpr const char* identityMessage = "Slide source identities did not survive delivery.";
constexpr const char* observationMessage =
    "Trusted source coverage and observation time did not survive presentation delivery.";

constexpr const char* chartMessage = "Slide chart data did not survive delivery.";

void require(bool holds, const char* message) {
  if (!holds) throw DocumentError::validationFailed(message);
}

/// Whether a text is there as slides show it, without the characters that XML cannot carry.
bool isDelivered(std::string_view found, std::string_view wanted) {
  return OOXML::escaped(found) == OOXML::escaped(SlideText::flattened(wanted));
}

/// The shapes of one slide that carry text, by their names.
class SlideShapeTexts {
 public:
  explicit SlideShapeTexts(XMLNode slide) : slide_(slide) {}

  /// The properties of the only shape of that name; none where there is not exactly one.
  std::optional<XMLNode> properties(std::string_view name) const {
    std::optional<XMLNode> found;
    for (const XMLNode shape : slide_.descendants("sp")) {
      for (const XMLNode candidate : shape.descendants("cNvPr")) {
        if (candidate.attribute("name") != name) continue;
        if (found) return std::nullopt;
        found = candidate;
      }
    }
    return found;
  }

  /// The paragraphs of the shapes of that name; none where a paragraph is not exactly one run or field.
  std::optional<std::vector<std::string>> paragraphs(std::string_view name) const {
    std::vector<std::string> texts;
    for (const XMLNode shape : slide_.descendants("sp")) {
      if (!isNamed(shape, name)) continue;
      for (const XMLNode paragraph : shape.descendants("p")) {
        const XMLElements runs = paragraph.descendants("t");
        if (runs.size() != 1) return std::nullopt;
        texts.push_back((*runs.begin()).content());
      }
    }
    return texts;
  }

  std::size_t countBeginning(std::string_view name) const {
    std::size_t count = 0;
    for (const XMLNode properties : slide_.descendants("cNvPr"))
      count += properties.attribute("name").value_or("").starts_with(name) ? 1 : 0;
    return count;
  }

 private:
  static bool isNamed(XMLNode shape, std::string_view name) {
    const XMLElements properties = shape.descendants("cNvPr");
    return !properties.empty() && (*properties.begin()).attribute("name") == name;
  }

  XMLNode slide_;
};

void verifyContent(const SlideShapeTexts& shapes, const Slide& slide, std::size_t number) {
  const auto shows = [&](std::string_view name, const std::vector<std::string>& texts) {
    const auto paragraphs = shapes.paragraphs(name);
    return paragraphs && std::ranges::equal(*paragraphs, texts, isDelivered);
  };
  require(shows("Title", {slide.title}) && shows("Points", slide.body) &&
              shows("Slide number", {std::to_string(number)}),
          contentMessage);
}

/// What is known of the slide's n-th source; none where it has no line, or none of its own.
std::optional<std::string> deliveredIdentity(const SlideShapeTexts& shapes, std::size_t index) {
  const std::string name = "Source " + std::to_string(index + 1);
  const auto properties = shapes.properties(name);
  const auto shown = shapes.paragraphs(name);
  if (!properties || !shown || shown->size() != 1 || shown->front().empty()) return std::nullopt;
  return std::string(properties->attribute("descr").value_or(""));
}

void verifyRecords(const SlideShapeTexts& shapes, const std::vector<Record>& records) {
  require(shapes.countBeginning("Source ") == records.size(), identityMessage);
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto identity = deliveredIdentity(shapes, i);
    require(identity && identity->starts_with(records[i].id + " | "), identityMessage);
    const auto shown = shapes.paragraphs("Source " + std::to_string(i + 1));
    require(isDelivered(*identity, records[i].metadata()) &&
                shown->front().ends_with(" · " + records[i].observedUTC()),
            observationMessage);
  }
}

/// Without a scope nothing is known of a source but how the slide names it.
void verifyNames(const SlideShapeTexts& shapes, const Slide& slide) {
  std::vector<std::string> names = slide.sources;
  if (slide.sourceIDs) names.insert(names.end(), slide.sourceIDs->begin(), slide.sourceIDs->end());
  require(shapes.countBeginning("Source ") == names.size(), identityMessage);
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto identity = deliveredIdentity(shapes, i);
    require(identity && isDelivered(*identity, names[i]), identityMessage);
  }
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
    const Slide& slide = presentation.slides[i];
    const SlideShapeTexts shapes(package.slides()[i]);
    verifyContent(shapes, slide, i + 1);
    if (scope) {
      verifyRecords(shapes, ResearchPresentation::sourceRecords(slide, scope));
    } else {
      verifyNames(shapes, slide);
    }
  }
  verifyCharts(package, presentation, stop);
}

}  // namespace zelvo
