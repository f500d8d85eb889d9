#pragma once

#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// A size in points.
struct ChartSize {
  double width;
  double height;
};

/// How a chart is drawn in its frame. Positions are in parts of the frame, font sizes in points.
struct ChartPlan {
  enum class Labels {
    flat,      ///< wrapped at words if they do not fit side by side
    diagonal,  ///< rising at 45 degrees
    none,      ///< they do not fit at any size
  };

  bool isHorizontal = false;  ///< bars that run from left to right
  bool showsValues = false;   ///< a number at the end of each bar
  bool hasNegatives = false;
  bool isPinnedAtLeast = false;  ///< the value axis begins at zero
  bool isPinnedAtMost = false;   ///< the value axis ends at zero

  int gapWidth = 0;       ///< between categories, in percent of a bar's width
  std::string subtitle;   ///< the only series, if it is too long for the axis' title; otherwise empty
  std::string axisTitle;  ///< the only series, or else the unit; may be empty
  std::string axisFormat;
  std::string valueFormat;

  double titleLeft = 0;
  int titleSize = 0;
  int subtitleSize = 0;
  int axisTitleSize = 0;
  int legendSize = 0;
  int labelSize = 0;   ///< of categories
  int numberSize = 0;  ///< of the value axis and at bars
  Labels labels = Labels::flat;

  double legendTop = 0;
  double legendHeight = 0;  ///< 0 if there is no legend
  double axisTitleTop = 0;
  double plotTop = 0;
};

/// Plans the chart for a frame of that size. Font sizes are 12 points, and 14 for the title, wherever texts
/// fit at these sizes.
ChartPlan chartPlan(const ResearchPresentation::ResolvedChartBinding& binding, const ChartSize& frame);

}  // namespace zelvo
