#include "DocumentRuntime/Research/Slides/Renderer.hpp"

#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Authoring/PresentationPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Charts/ChartWorkbook.hpp"
#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/ReadBack.hpp"
#include "DocumentRuntime/Research/Slides/Author.hpp"
#include "DocumentRuntime/Research/Slides/Chart.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using DocumentAuthor::Slide;
using DocumentAuthor::SlideChart;

SlideChart chartOf(const Binding& binding, const std::stop_token& stop) {
  return {.xml = slideChartXML(binding),
          .workbookName = "chart-data" + std::to_string(binding.partNumber) + ".xlsx",
          .workbook = ResearchChartWorkbook::write(*binding.dataset, *binding.cells, binding.chart(), stop)};
}

PartMap partsOf(const ResearchPresentation& presentation, const std::optional<ResearchSourceScope>& scope,
                const std::stop_token& stop) {
  BoundedZIP::OutputSize drawn;
  const std::vector<Binding> bindings = presentation.resolvedChartBindings();
  std::vector<SlideChart> charts;
  for (const Binding& binding : bindings) {
    // Slides that show the same chart share its part.
    if (std::cmp_less_equal(binding.partNumber, charts.size())) continue;
    const SlideChart& chart = charts.emplace_back(chartOf(binding, stop));
    drawn.add(0, chart.xml.size());
    drawn.add(0, chart.workbook.size());
  }
  std::vector<Slide> slides;
  auto binding = bindings.begin();
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    Slide& slide = slides.emplace_back(Slide{.xml = researchSlide(presentation, i, scope), .chart = {}});
    drawn.add(0, slide.xml.size());
    if (presentation.slides[i].namedChart())
      slide.chart = static_cast<std::size_t>(binding++->partNumber) - 1;
  }
  return DocumentAuthor::presentationPackage(std::move(slides), std::move(charts));
}

}  // namespace

ByteBuffer renderPresentation(const ResearchPresentation& presentation, std::int64_t rendererVersion,
                              const std::optional<ResearchSourceScope>& sourceScope,
                              const std::stop_token& stop) {
  presentation.validate(std::nullopt, sourceScope);
  PresentationRendererVersion::check(rendererVersion, presentation);
  ByteBuffer deck = BoundedZIP::write(partsOf(presentation, sourceScope, stop), stop);
  readBackResearchPresentation(deck.view(), presentation, sourceScope, stop);
  return deck;
}

}  // namespace zelvo
