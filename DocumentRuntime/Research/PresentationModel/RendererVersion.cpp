#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::PresentationRendererVersion {
namespace {

using Slide = ResearchPresentation::Slide;

constexpr std::int64_t firstWithCharts = 3;
constexpr std::int64_t firstWithCollections = 4;

void require(bool holds, const char* detail) {
  if (!holds) throw DocumentError::unsupported(detail);
}

}  // namespace

void check(std::int64_t version, const ResearchPresentation& presentation) {
  const auto& slides = presentation.slides;
  const bool showsCharts =
      std::ranges::any_of(slides, [](const Slide& slide) { return slide.chartIndex.has_value(); });
  const bool showsCollection =
      std::ranges::any_of(slides, [](const Slide& slide) { return slide.chartReference.has_value(); });
  require(version >= oldest && version <= newest, "presentation renderer version");
  require(!showsCharts || version >= firstWithCharts, "chart datasets require presentation renderer 3");
  require(!showsCollection || version >= firstWithCollections,
          "multiple dataset charts require presentation renderer 4");
}

}  // namespace zelvo::PresentationRendererVersion
