#include "DocumentRuntime/Research/Slides/ChartPlan.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Slides/NumberRange.hpp"
#include "DocumentRuntime/Research/Slides/Script.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using Labels = ChartPlan::Labels;
using SlideText::smallestSize;

constexpr int titleSize = 14;
constexpr int textSize = 12;
/// The smallest sizes of labels beside which another arrangement of larger labels is better.
constexpr int smallestFlatSize = 11;
constexpr int smallestRowSize = 9;
constexpr int smallestDiagonalSize = 9;

/// The part of the frame's width at which office programs wrap a title.
constexpr double titleWidth = 0.78;
/// The same of the title of the value axis.
constexpr double axisTitleWidth = 0.18;
/// The space below a text, in points.
constexpr double belowText = 6;
/// The key beside a legend's entry, with the space around both, in points.
constexpr double legendKey = 40;
constexpr double legendLine = 1.5;  ///< relative to the font size
/// Two labels side by side have this space between them, in ems.
constexpr double labelGap = 0.6;
/// Office programs wrap labels at a part of the width that each category has.
constexpr double wrappedPart = 0.85;
constexpr double mostLabelLines = 3;
/// Diagonal labels may take this part of the plot's height, and more before they are left out; labels beside
/// bars may take this part of its width.
constexpr double usualDiagonalPart = 0.34;
constexpr double mostDiagonalPart = 0.55;
constexpr double mostBesidePart = 0.45;
constexpr double sineOfDiagonal = 0.7072;
/// The gap between categories, in percent of a bar's width. A few bars are not as wide as the plot.
constexpr int usualGap = 60;
constexpr int wideGap = 150;
constexpr std::size_t fewBars = 4;
/// The same gap, relative to a bar's width.
constexpr double usualGapPart = 0.6;
/// More numbers than these are read from the axis.
constexpr std::size_t mostValues = 24;

/// Category labels, with the widths that their arrangement depends on, in ems.
struct LabelWidths {
  std::vector<std::string> texts;
  double widest = 0;
  double widestWord = 0;
  bool arePeriods = true;  ///< dates, years, quarters: each has a digit. They run from left to right
};

LabelWidths labelWidths(const Binding& binding) {
  LabelWidths labels;
  for (const auto& row : *binding.cells) {
    const auto& cell = row[static_cast<std::size_t>(binding.chart().categoryColumn)];
    labels.texts.push_back(ResearchChartAuthor::cleaned(cell.displayText()));
    const std::string& text = labels.texts.back();
    labels.widest = std::max(labels.widest, TextWidth::of(text, FontWeight::regular));
    labels.widestWord = std::max(labels.widestWord, SlideText::widestWord(text, FontWeight::regular));
    labels.arePeriods = labels.arePeriods && text.find_first_of("0123456789") != std::string::npos;
  }
  return labels;
}

double mostLines(const LabelWidths& labels, double lineWidth) {
  double most = 0;
  for (const std::string& text : labels.texts)
    most = std::max(most, SlideText::lines(text, lineWidth, FontWeight::regular));
  return most;
}

/// The arrangement of labels below the axis. `slot` is the width of a category, in points.
struct Arrangement {
  Labels labels;
  int size;
};

std::optional<Arrangement> sideBySide(const LabelWidths& labels, double slot, int smallest) {
  for (int size = textSize; size >= smallest; --size) {
    if ((labels.widest + labelGap) * size <= slot) return Arrangement{Labels::flat, size};
    const double lineWidth = slot * wrappedPart / size;
    if (labels.widestWord <= lineWidth && mostLines(labels, lineWidth) <= mostLabelLines)
      return Arrangement{Labels::flat, size};
  }
  return std::nullopt;
}

/// `height` is what the labels may take of the plot's height.
std::optional<Arrangement> diagonal(const LabelWidths& labels, double slot, double height, int smallest) {
  for (int size = textSize; size >= smallest; --size) {
    const bool areApart = size * SlideText::lineSpacing <= slot * sineOfDiagonal;
    if (areApart && labels.widest * size * sineOfDiagonal <= height)
      return Arrangement{Labels::diagonal, size};
  }
  return std::nullopt;
}

/// The labels beside bars, each on one line. `slot` is the height of a category, in points.
std::optional<Arrangement> beside(const LabelWidths& labels, double slot, double width, int smallest) {
  for (int size = textSize; size >= smallest; --size) {
    if (size * SlideText::lineSpacing <= slot && labels.widest * size <= width * mostBesidePart)
      return Arrangement{Labels::flat, size};
  }
  return std::nullopt;
}

/// Chooses the arrangement with the best legibility.
void arrangeLabels(ChartPlan& plan, const Binding& binding, double plotWidth, double axisWidth,
                   double plotHeight) {
  const LabelWidths labels = labelWidths(binding);
  const auto count = static_cast<double>(labels.texts.size());
  const double below = (plotWidth - axisWidth) / count;
  const double row = (plotHeight - textSize * SlideText::lineSpacing) / count;
  const bool isBar = binding.chart().kind == ResearchSpreadsheet::Chart::Kind::bar;
  std::optional<Arrangement> chosen = sideBySide(labels, below, smallestFlatSize);
  const auto placeDiagonally = [&](double part, int smallest) {
    if (!chosen) chosen = diagonal(labels, below, plotHeight * part, smallest);
  };
  const auto placeBeside = [&](int smallest) {
    if (chosen || !isBar) return;
    chosen = beside(labels, row, plotWidth, smallest);
    plan.isHorizontal = chosen.has_value();
  };
  if (labels.arePeriods) placeDiagonally(usualDiagonalPart, smallestDiagonalSize);
  placeBeside(smallestRowSize);
  placeDiagonally(usualDiagonalPart, smallestDiagonalSize);
  if (!chosen) chosen = sideBySide(labels, below, smallestSize);
  placeBeside(smallestSize);
  placeDiagonally(mostDiagonalPart, smallestSize);
  const Arrangement last = chosen.value_or(Arrangement{Labels::none, textSize});
  plan.labels = last.labels;
  plan.labelSize = last.size;
}

/// Whether the numbers fit above the bars, or beside them.
bool fitsValues(const ChartPlan& plan, const Binding& binding, const NumberRange& range, double plotWidth,
                double plotHeight) {
  const std::size_t series = binding.chart().valueColumns.size();
  const std::size_t bars = binding.cells->size() * series;
  if (binding.chart().kind == ResearchSpreadsheet::Chart::Kind::line || bars > mostValues) return false;
  if (plan.valueFormat.empty()) return false;
  // The number of the only bar may be wider than the bar.
  const double category =
      (plan.isHorizontal ? plotHeight : plotWidth) / static_cast<double>(binding.cells->size());
  const double slot = series == 1 ? category : category / (static_cast<double>(series) + usualGapPart);
  const double needed = plan.isHorizontal ? SlideText::lineSpacing : range.valueWidth() + labelGap / 2;
  return needed * textSize <= slot;
}

int sizeOnOneLine(double ems, double width, int largest) {
  return std::clamp(static_cast<int>(width / std::max(ems, 1.0)), smallestSize, largest);
}

std::vector<std::string> seriesNames(const Binding& binding) {
  std::vector<std::string> names;
  for (const std::int64_t column : binding.chart().valueColumns) {
    names.push_back(ResearchChartAuthor::cleaned(
        ResearchChartAuthor::seriesName(binding.dataset->columns[static_cast<std::size_t>(column)])));
  }
  return names;
}

/// The height of the legend: its entries have equal widths, that of the longest.
double legendHeight(const std::vector<std::string>& names, double width, int& size) {
  double widest = 0;
  for (const std::string& name : names)
    widest = std::max(widest, TextWidth::of(name, FontWeight::regular));
  size = sizeOnOneLine(widest, width - legendKey, textSize);
  const double columns = std::max(1.0, std::floor(width / (widest * size + legendKey)));
  return std::ceil(static_cast<double>(names.size()) / columns) * size * legendLine;
}

}  // namespace

ChartPlan chartPlan(const Binding& binding, const ChartSize& frame) {
  const NumberRange range(binding);
  ChartPlan plan;
  plan.hasNegatives = range.least() < 0;
  plan.isPinnedAtLeast = range.isPinned() && range.least() >= 0;
  plan.isPinnedAtMost = range.isPinned() && range.least() < 0 && range.most() <= 0;
  plan.axisFormat = range.axisFormat();
  plan.valueFormat = range.valueFormat();
  plan.numberSize = textSize;

  const std::string title = ResearchChartAuthor::cleaned(binding.chart().title);
  const double titleRoom = frame.width * titleWidth;
  constexpr double mostTitleHeight = 2 * titleSize * SlideText::lineSpacing;
  // A title of many combining marks, which fits at no size, is no reason to refuse the deck.
  plan.titleSize = SlideText::largestFitting({title}, {.width = titleRoom,
                                                       .height = mostTitleHeight,
                                                       .largestSize = titleSize,
                                                       .weight = FontWeight::bold})
                       .value_or(smallestSize);
  if (SlideScript::isRightToLeft(title)) {
    const double ems = TextWidth::of(title, FontWeight::bold);
    plan.titleLeft = std::max(0.0, 1 - (ems * plan.titleSize + belowText) / frame.width);
  }
  const double titleLines = SlideText::lines(title, titleRoom / plan.titleSize, FontWeight::bold);
  double top = std::min(titleLines * plan.titleSize * SlideText::lineSpacing, mostTitleHeight) + belowText;

  const std::vector<std::string> names = seriesNames(binding);
  const double nameWidth = TextWidth::of(names.front(), FontWeight::regular);
  const bool isNamedByAxis = names.size() == 1 && nameWidth * textSize <= frame.width * axisTitleWidth;
  const auto& column =
      binding.dataset->columns[static_cast<std::size_t>(binding.chart().valueColumns.front())];
  plan.axisTitle = isNamedByAxis ? names.front() : ResearchChartAuthor::cleaned(column.unitText());
  if (names.size() == 1 && !isNamedByAxis) {
    plan.subtitle = names.front();
    plan.subtitleSize = sizeOnOneLine(nameWidth, titleRoom, textSize);
    top += plan.subtitleSize * SlideText::lineSpacing;
  }
  if (names.size() > 1) {
    plan.legendTop = top / frame.height;
    const double height = legendHeight(names, frame.width, plan.legendSize);
    plan.legendHeight = height / frame.height;
    top += height + belowText;
  }
  if (!plan.axisTitle.empty()) {
    plan.axisTitleTop = top / frame.height;
    plan.axisTitleSize = sizeOnOneLine(TextWidth::of(plan.axisTitle, FontWeight::regular),
                                       frame.width * axisTitleWidth, textSize);
    top += plan.axisTitleSize * SlideText::lineSpacing + belowText;
  }
  plan.plotTop = top / frame.height;

  plan.gapWidth = names.size() * binding.cells->size() <= fewBars ? wideGap : usualGap;

  const double plotHeight = frame.height - top;
  const double axisWidth = (range.axisWidth() + 1) * textSize;
  arrangeLabels(plan, binding, frame.width, axisWidth, plotHeight);
  plan.showsValues = fitsValues(plan, binding, range, frame.width - axisWidth, plotHeight);
  return plan;
}

}  // namespace zelvo
