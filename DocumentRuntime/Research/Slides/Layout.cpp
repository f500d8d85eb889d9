#include "DocumentRuntime/Research/Slides/Layout.hpp"

#include <algorithm>
#include <cmath>
#include <map>

#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::contentWidthPoints;
using DocumentAuthor::emuPerPoint;
using Kind = SlideLayout::Kind;
using SlideShapes::Area;
using SlideText::lineSpacing;

// All lengths are in points. The slide has 960 × 540.
constexpr double left = static_cast<double>(DocumentAuthor::contentLeft) / static_cast<double>(emuPerPoint);
constexpr double slideHeight = 540;
constexpr double bottomMargin = 10;

constexpr double coverTitleTop = 60;
constexpr double coverTitleHeight = 180;
constexpr double coverPointsTop = 296;
constexpr double coverPointsHeight = 190;

constexpr double titleTop = 26;
constexpr double mostTitleHeight = 78;  ///< two lines at the usual size
constexpr double belowTitle = 8;
constexpr double pointIndent = 20;
constexpr double insightIndent = 12;
constexpr double insightPadding = 6;
constexpr double mostInsightHeight = 56;  ///< two lines at the usual size
constexpr double aboveFooter = 6;         ///< above and below the footer's rule

constexpr double footerLine = 12;
constexpr int footerSize = 10;
/// More sources are in two columns.
constexpr std::size_t mostSourceLines = 4;
constexpr int smallFooterSize = 9;
constexpr double betweenColumns = 10;
/// The sources are between the word that introduces them and the slide's number.
constexpr double sourceIndent = 52;
constexpr double footerEndWidth = 60;  ///< of the word's area, and of the number's

/// The size that texts of a role have where they fit, and the smallest to which one long text changes all.
struct Role {
  int size;
  int smallestShared;
};
constexpr Role coverTitle = {44, 32};
constexpr Role coverPoint = {22, 18};
constexpr Role heading = {28, 22};
constexpr Role listedPoint = {24, 18};
constexpr Role insight = {16, 14};

std::int64_t inEMU(double points) {
  return std::llround(points * static_cast<double>(emuPerPoint));
}

Area area(double x, double y, double areaWidth, double height) {
  return {inEMU(x), inEMU(y), inEMU(areaWidth), inEMU(height)};
}

std::vector<std::string> flattened(const std::vector<std::string>& texts) {
  std::vector<std::string> flat;
  flat.reserve(texts.size());
  for (const std::string& text : texts)
    flat.push_back(SlideText::flattened(text));
  return flat;
}

double textHeight(const std::string& text, double lineWidth, int size, FontWeight weight) {
  return SlideText::lines(text, lineWidth / size, weight) * size * lineSpacing;
}

/// One size for all texts of a role that fit at it, from the sizes at which each fits.
class SharedSizes {
 public:
  void add(const Role& role, int fitting) {
    int& shared = sizes_.try_emplace(role.size, role.size).first->second;
    if (fitting >= role.smallestShared) shared = std::min(shared, fitting);
  }
  int of(const Role& role, int fitting) const { return std::min(sizes_.at(role.size), fitting); }

 private:
  std::map<int, int> sizes_;  ///< by the role's usual size, which no two roles share
};

/// The content of one slide while its layout is found.
struct Draft {
  SlideLayout layout;
  const Role* titleRole;
  const Role* textRole;
  int fittingTitle = 0;
  int fittingText = 0;
  double top = 0;     ///< of the content below the title
  double bottom = 0;  ///< of the content above the footer
};

Draft drafted(const ResearchPresentation& presentation, std::size_t index, std::size_t sources) {
  const auto& slide = presentation.slides[index];
  Draft draft = {.layout = {}, .titleRole = &heading, .textRole = &insight};
  SlideLayout& layout = draft.layout;
  layout.title = SlideText::flattened(slide.title);
  layout.points = flattened(slide.body);
  if (index == 0) {
    layout.kind = Kind::cover;
    draft.titleRole = &coverTitle;
    draft.textRole = &coverPoint;
  } else if (slide.namedChart()) {
    layout.kind = Kind::chart;
  } else {
    draft.textRole = &listedPoint;
  }
  draft.fittingTitle =
      SlideText::fittedSize({layout.title}, {.width = contentWidthPoints,
                                             .height = index == 0 ? coverTitleHeight : mostTitleHeight,
                                             .largestSize = draft.titleRole->size,
                                             .weight = FontWeight::bold});

  const std::size_t columns = sources > mostSourceLines ? 2 : 1;
  const auto lines = static_cast<double>(std::max<std::size_t>((sources + columns - 1) / columns, 1));
  const double columnWidth =
      (contentWidthPoints - sourceIndent - footerEndWidth) / static_cast<double>(columns);
  const double footerTop = slideHeight - bottomMargin - lines * footerLine;
  layout.sourceSize = columns == 1 ? footerSize : smallFooterSize;
  for (std::size_t i = 0; i < sources; ++i) {
    const std::size_t lineNumber = i / columns;
    const auto line = static_cast<double>(lineNumber);
    const auto column = static_cast<double>(i % columns);
    layout.sourceAreas.push_back(area(left + sourceIndent + column * columnWidth,
                                      footerTop + line * footerLine, columnWidth - betweenColumns,
                                      footerLine));
  }
  layout.footerRule = area(left, footerTop - aboveFooter, contentWidthPoints, 0.75);
  layout.sourcesLabelArea = area(left, footerTop, footerEndWidth, footerLine);
  layout.numberArea = area(left + contentWidthPoints - footerEndWidth, footerTop, footerEndWidth, footerLine);
  layout.numberSize = footerSize;
  draft.bottom = footerTop - 2 * aboveFooter;
  return draft;
}

void placeTitle(Draft& draft) {
  SlideLayout& layout = draft.layout;
  if (layout.kind == Kind::cover) {
    layout.titleArea = area(left, coverTitleTop, contentWidthPoints, coverTitleHeight);
    return;
  }
  const double height = std::min(
      mostTitleHeight, textHeight(layout.title, contentWidthPoints, layout.titleSize, FontWeight::bold));
  layout.titleArea = area(left, titleTop, contentWidthPoints, height);
  draft.top = titleTop + height + belowTitle;
}

/// The area of the points while their size is found.
SlideText::Bounds pointBounds(const Draft& draft) {
  const int size = draft.textRole->size;
  switch (draft.layout.kind) {
    case Kind::cover:
      return {.width = contentWidthPoints, .height = coverPointsHeight, .largestSize = size};
    case Kind::points:
      return {
          .width = contentWidthPoints - pointIndent, .height = draft.bottom - draft.top, .largestSize = size};
    case Kind::chart:
      break;
  }
  return {.width = contentWidthPoints - 2 * insightIndent, .height = mostInsightHeight, .largestSize = size};
}

/// Gives each point a row. What the texts leave free is shared equally, so that no half of the slide is
/// empty.
void placeRows(Draft& draft) {
  SlideLayout& layout = draft.layout;
  std::vector<double> heights;
  double used = 0;
  for (const std::string& point : layout.points) {
    heights.push_back(
        textHeight(point, contentWidthPoints - pointIndent, layout.textSize, FontWeight::regular));
    used += heights.back();
  }
  const double available = draft.bottom - draft.top;
  const double free = std::max(0.0, available - used) / static_cast<double>(heights.size());
  // At the smallest size the texts may have been taken for narrower than here.
  const double scale = std::min(1.0, available / used);
  double top = draft.top;
  for (const double height : heights) {
    const double row = height * scale + free;
    layout.pointAreas.push_back(area(left + pointIndent, top, contentWidthPoints - pointIndent, row));
    layout.pointHeights.push_back(inEMU(height * scale));
    top += row;
  }
}

void placeInsight(Draft& draft) {
  SlideLayout& layout = draft.layout;
  const double textWidth = contentWidthPoints - 2 * insightIndent;
  const double height = std::min(
      mostInsightHeight, textHeight(layout.points.front(), textWidth, layout.textSize, FontWeight::regular));
  const double panelTop = draft.bottom - height - 2 * insightPadding;
  layout.pointAreas = {area(left + insightIndent, panelTop, textWidth, height + 2 * insightPadding)};
  layout.chartArea = area(left, draft.top, contentWidthPoints, panelTop - aboveFooter - draft.top);
}

}  // namespace

ChartSize SlideLayout::chartSize() const {
  const auto inPoints = [](std::int64_t emu) {
    return static_cast<double>(emu) / static_cast<double>(emuPerPoint);
  };
  return {inPoints(chartArea.width), inPoints(chartArea.height)};
}

std::vector<SlideLayout> slideLayouts(const ResearchPresentation& presentation,
                                      const std::vector<std::size_t>& sourceCounts) {
  std::vector<Draft> drafts;
  SharedSizes shared;
  for (std::size_t i = 0; i < presentation.slides.size(); ++i) {
    const Draft& draft = drafts.emplace_back(drafted(presentation, i, sourceCounts[i]));
    shared.add(*draft.titleRole, draft.fittingTitle);
  }
  for (Draft& draft : drafts) {
    draft.layout.titleSize = shared.of(*draft.titleRole, draft.fittingTitle);
    placeTitle(draft);
    draft.fittingText = SlideText::fittedSize(draft.layout.points, pointBounds(draft));
    shared.add(*draft.textRole, draft.fittingText);
  }
  std::vector<SlideLayout> layouts;
  for (Draft& draft : drafts) {
    SlideLayout& layout = draft.layout;
    layout.textSize = shared.of(*draft.textRole, draft.fittingText);
    if (layout.kind == Kind::cover)
      layout.pointAreas = {area(left, coverPointsTop, contentWidthPoints, coverPointsHeight)};
    if (layout.kind == Kind::points) placeRows(draft);
    if (layout.kind == Kind::chart) placeInsight(draft);
    layouts.push_back(std::move(layout));
  }
  return layouts;
}

}  // namespace zelvo
