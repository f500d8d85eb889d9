#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/Slides/ChartPlan.hpp"
#include "DocumentRuntime/Research/Slides/Shapes.hpp"

namespace zelvo {

/// The places and font sizes of one slide's texts. Areas are in EMU, sizes in points.
struct SlideLayout {
  enum class Kind { cover, points, chart };

  Kind kind = Kind::points;
  std::string title;                ///< as the slide shows it
  std::vector<std::string> points;  ///< the same
  int titleSize = 0;
  int textSize = 0;
  SlideShapes::Area titleArea = {};
  /// Of each point on a slide of points; otherwise one area for all.
  std::vector<SlideShapes::Area> pointAreas;
  /// The heights of the texts in these areas, in EMU.
  std::vector<std::int64_t> pointHeights;
  SlideShapes::Area chartArea = {};
  SlideShapes::Area footerRule = {};
  SlideShapes::Area sourcesLabelArea = {};
  std::vector<SlideShapes::Area> sourceAreas;
  int sourceSize = 0;
  SlideShapes::Area numberArea = {};
  int numberSize = 0;

  ChartSize chartSize() const;
};

/// The layouts of a deck's slides. `sourceCounts` are the numbers of sources in the slides' footers.
///
/// Texts of one role (headings, points, insights) have one size on all slides where they fit at that size:
/// the largest at which all of them do, except those that would need much less. These alone are smaller.
/// Throws `DocumentError` unsupported "slide text needs too much space".
std::vector<SlideLayout> slideLayouts(const ResearchPresentation& presentation,
                                      const std::vector<std::size_t>& sourceCounts);

}  // namespace zelvo
