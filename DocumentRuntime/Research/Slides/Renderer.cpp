#include "DocumentRuntime/Research/Slides/Renderer.hpp"

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Authoring/PresentationPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Charts/ChartWorkbook.hpp"
#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/ReadBack.hpp"
#include "DocumentRuntime/Research/Slides/Author.hpp"
#include "DocumentRuntime/Research/Slides/Chart.hpp"
#include "DocumentRuntime/Research/Slides/Layout.hpp"
#include "DocumentRuntime/Research/Slides/Sources.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using DocumentAuthor::Slide;
using DocumentAuthor::SlideChart;

/// The texts that tell the deck's languages.
SlideScript::Languages languagesOf(const ResearchPresentation& presentation) {
  std::vector<std::string_view> texts = {presentation.title, presentation.report};
  for (const auto& slide : presentation.slides) {
    texts.emplace_back(slide.title);
    texts.insert(texts.end(), slide.body.begin(), slide.body.end());
  }
  return SlideScript::Languages(texts);
}

/// Collects the slides and charts of a deck, and stops when they pass the limits of an archive.
class DeckAuthor {
 public:
  DeckAuthor(const ResearchPresentation& presentation, const std::optional<ResearchSourceScope>& scope)
      : presentation_(presentation), languages_(languagesOf(presentation)) {
    std::vector<std::size_t> sourceCounts;
    for (const auto& slide : presentation.slides)
      sourceCounts.push_back(sources_.emplace_back(slideSources(slide, scope)).size());
    layouts_ = slideLayouts(presentation, sourceCounts);
    plan_.themeXML = ResearchChartAuthor::themeXML();
    plan_.title = SlideText::flattened(presentation.title);
  }

  DocumentAuthor::PresentationPlan take(const std::stop_token& stop) {
    const std::vector<Binding> bindings = presentation_.resolvedChartBindings();
    auto binding = bindings.begin();
    for (std::size_t i = 0; i < layouts_.size(); ++i) {
      const bool hasChart = layouts_[i].kind == SlideLayout::Kind::chart;
      const std::string chartTitle = hasChart ? binding->chart().title : std::string();
      Slide& slide = plan_.slides.emplace_back(
          Slide{.xml = researchSlide(layouts_[i], i + 1, sources_[i], chartTitle, languages_), .chart = {}});
      drawn_.add(0, slide.xml.size());
      if (!hasChart) continue;
      slide.chart = plan_.charts.size();
      addChart(*binding++, layouts_[i].chartSize(), stop);
    }
    return std::move(plan_);
  }

 private:
  /// Each slide has a chart part of its own, since office programs may report a part that two slides share as
  /// damaged. Equal charts share the workbook behind them: the package gate allows four.
  void addChart(const Binding& binding, const ChartSize& size, const std::stop_token& stop) {
    const bool isFirst = workbooks_.insert(binding.partNumber).second;
    SlideChart& chart = plan_.charts.emplace_back(
        SlideChart{.xml = slideChartXML(binding, size, languages_),
                   .workbookName = "chart-data" + std::to_string(binding.partNumber) + ".xlsx",
                   .workbook = {}});
    drawn_.add(0, chart.xml.size());
    if (!isFirst) return;
    chart.workbook = ResearchChartWorkbook::write(*binding.dataset, *binding.cells, binding.chart(), stop);
    drawn_.add(0, chart.workbook.size());
  }

  const ResearchPresentation& presentation_;
  SlideScript::Languages languages_;
  std::vector<std::vector<SlideSource>> sources_;
  std::vector<SlideLayout> layouts_;
  std::set<std::int64_t> workbooks_;
  BoundedZIP::OutputSize drawn_;
  DocumentAuthor::PresentationPlan plan_;
};

}  // namespace

ByteBuffer renderPresentation(const ResearchPresentation& presentation, std::int64_t rendererVersion,
                              const std::optional<ResearchSourceScope>& sourceScope,
                              const std::stop_token& stop) {
  presentation.validate(std::nullopt, sourceScope);
  PresentationRendererVersion::check(rendererVersion, presentation);
  ByteBuffer deck = BoundedZIP::write(
      DocumentAuthor::presentationPackage(DeckAuthor(presentation, sourceScope).take(stop)), stop);
  readBackResearchPresentation(deck.view(), presentation, sourceScope, stop);
  return deck;
}

}  // namespace zelvo
