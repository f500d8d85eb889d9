// A valid deck becomes a package, and the package is proved to say what the deck says.

#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Authoring/PresentationPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/DeliveryVerification.hpp"
#include "DocumentRuntime/Research/DrawnBytes.hpp"
#include "DocumentRuntime/Research/PresentationRendererVersion.hpp"
#include "DocumentRuntime/Research/ResearchChartWorkbook.hpp"
#include "DocumentRuntime/Research/ResearchPresentation.hpp"
#include "DocumentRuntime/Research/ResearchSlideAuthor.hpp"
#include "DocumentRuntime/Research/SlideChart.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using DocumentAuthor::Slide;
using DocumentAuthor::SlideChart;

SlideChart chartOf(const Binding& binding, const std::stop_token& stop) {
  return {.xml = slideChartXML(binding),
          .workbookName = "chart-data" + std::to_string(binding.partNumber) + ".xlsx",
          .workbook = ResearchChartWorkbook::write(binding, stop)};
}

PartMap partsOf(const ResearchPresentation& presentation, const std::optional<ResearchSourceScope>& scope,
                const std::stop_token& stop) {
  DrawnBytes drawn;
  const std::vector<Binding> bindings = presentation.resolvedChartBindings();
  std::vector<SlideChart> charts;
  for (const Binding& binding : bindings) {
    // Slides that show the same chart share its part.
    if (std::cmp_less_equal(binding.partNumber, charts.size())) continue;
    const SlideChart& chart = charts.emplace_back(chartOf(binding, stop));
    drawn.add(chart.xml.size());
    drawn.add(chart.workbook.size());
  }
  std::vector<Slide> slides;
  auto binding = bindings.begin();
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    Slide& slide = slides.emplace_back(Slide{.xml = researchSlide(presentation, i, scope), .chart = {}});
    drawn.add(slide.xml.size());
    if (presentation.slides[i].namedChart())
      slide.chart = static_cast<std::size_t>(binding++->partNumber) - 1;
  }
  return DocumentAuthor::presentationPackage(std::move(slides), std::move(charts));
}

}  // namespace

ByteBuffer ResearchPresentation::make(const ResearchPresentation& presentation, std::int64_t rendererVersion,
                                      const std::optional<ResearchSourceScope>& sourceScope,
                                      const std::stop_token& stop) {
  presentation.validate(std::nullopt, sourceScope);
  PresentationRendererVersion::check(rendererVersion, presentation);
  ByteBuffer deck = BoundedZIP::write(partsOf(presentation, sourceScope, stop), stop);
  verifyDelivery(deck.view(), presentation, sourceScope, stop);
  return deck;
}

}  // namespace zelvo
