#include "DocumentRuntime/Research/Slides/Chart.hpp"

#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Slides/Shapes.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using Cell = ResearchSpreadsheet::Cell;
using Labels = ChartPlan::Labels;
using SlideShapes::appendFill;
using SlideShapes::hundredthsPerPoint;

// Colours of the theme.
constexpr std::array<std::string_view, ResearchSpreadsheet::Chart::maximumSeries> seriesColours = {
    "accent1", "accent2", "accent3", "accent4"};
constexpr std::string_view titleColour = "tx1";
constexpr std::string_view labelColour = "accent5";
constexpr std::string_view gridColour = "accent6";

/// Lines differ in their markers, too.
constexpr std::array<std::string_view, ResearchSpreadsheet::Chart::maximumSeries> markers = {
    "circle", "square", "diamond", "triangle"};
constexpr std::size_t mostLargeMarkers = 16;  ///< categories
constexpr int largeMarker = 8;
constexpr int smallMarker = 5;

// Widths of lines, in EMU.
constexpr int seriesLine = 28'575;
constexpr int axisLine = 9'525;
constexpr int gridLine = 6'350;

/// A part of the frame, with four decimals.
struct FramePart {
  double value;
};

std::string text(FramePart part) {
  constexpr int decimals = 10'000;
  const auto tenThousandths = static_cast<int>(std::lround(part.value * decimals));
  std::string digits = std::to_string(decimals + tenThousandths).substr(1);
  return (tenThousandths >= decimals ? "1." : "0.") + digits;
}

struct FontStyle {
  int size;
  std::string_view colour;
  bool bold = false;
};

std::string shown(std::string_view text) {
  return OOXML::escaped(ResearchChartAuthor::cleaned(text));
}

void appendLine(std::string& xml, int width, std::string_view colour) {
  OOXML::append(xml, R"(<a:ln w=")", width, R"(" cap="rnd">)");
  appendFill(xml, colour);
  xml += "<a:round/></a:ln>";
}

void appendLineProperties(std::string& xml, int width, std::string_view colour) {
  xml += "<c:spPr>";
  appendLine(xml, width, colour);
  xml += "</c:spPr>";
}

/// The properties of a run, or the default ones of a paragraph, up to the end of the element.
void appendFont(std::string& xml, const FontStyle& style, std::string_view element) {
  OOXML::append(xml, " sz=\"", style.size * hundredthsPerPoint, R"(" b=")", style.bold ? 1 : 0, "\">");
  appendFill(xml, style.colour);
  OOXML::append(xml, R"(<a:latin typeface="Arial"/></a:)", element, ">");
}

void appendTextProperties(std::string& xml, const FontStyle& style, std::string_view body = "<a:bodyPr/>") {
  OOXML::append(xml, "<c:txPr>", body, "<a:lstStyle/><a:p><a:pPr><a:defRPr");
  appendFont(xml, style, "defRPr");
  xml += R"(</a:pPr><a:endParaRPr lang="en-US"/></a:p></c:txPr>)";
}

/// The chart, and each step of writing it.
class ChartDrawing {
 public:
  ChartDrawing(const Binding& binding, const ChartPlan& plan, const SlideScript::Languages& languages)
      : binding_(binding), plan_(plan), languages_(languages), isBar_(isBar(binding)) {}

  std::string xml() {
    xml_ += R"(<c:chartSpace xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" )"
            R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" )"
            R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
            R"(<c:roundedCorners val="0"/><c:chart>)";
    std::vector<Line> title = {{binding_.chart().title, {plan_.titleSize, titleColour, true}}};
    if (!plan_.subtitle.empty()) title.push_back({plan_.subtitle, {plan_.subtitleSize, labelColour}});
    appendTitle(title, plan_.titleLeft, 0);
    xml_ +=
        R"(<c:autoTitleDeleted val="0"/><c:plotArea><c:layout><c:manualLayout><c:layoutTarget val="outer"/>)"
        R"(<c:xMode val="edge"/><c:yMode val="edge"/>)";
    OOXML::append(xml_, R"(<c:x val="0"/><c:y val=")", text(FramePart{plan_.plotTop}),
                  R"("/><c:w val="1"/><c:h val=")", text(FramePart{1 - plan_.plotTop}),
                  R"("/></c:manualLayout></c:layout>)");
    appendPlot();
    appendCategoryAxis();
    appendValueAxis();
    xml_ += "</c:plotArea>";
    if (plan_.legendHeight > 0) appendLegend();
    xml_ += R"(<c:plotVisOnly val="1"/><c:dispBlanksAs val="gap"/></c:chart>)"
            R"(<c:spPr><a:noFill/><a:ln><a:noFill/></a:ln></c:spPr>)";
    appendTextProperties(xml_, {plan_.numberSize, labelColour});
    xml_ += R"(<c:externalData r:id="rId1"><c:autoUpdate val="0"/></c:externalData></c:chartSpace>)";
    return std::move(xml_);
  }

 private:
  static bool isBar(const Binding& binding) {
    return binding.chart().kind == ResearchSpreadsheet::Chart::Kind::bar;
  }

  std::string_view plotElement() const { return isBar_ ? "barChart" : "lineChart"; }

  struct Line {
    std::string_view text;
    FontStyle style;
  };

  /// A title whose upper left corner is at these parts of the frame.
  void appendTitle(const std::vector<Line>& lines, double left, double top) {
    xml_ += R"(<c:title><c:tx><c:rich><a:bodyPr rot="0" vert="horz"/><a:lstStyle/>)";
    for (const Line& line : lines) {
      xml_ += R"(<a:p><a:pPr algn="l"><a:defRPr)";
      appendFont(xml_, line.style, "defRPr");
      OOXML::append(xml_, R"(</a:pPr><a:r><a:rPr lang=")", languages_.tagOf(line.text), "\"");
      appendFont(xml_, line.style, "rPr");
      OOXML::append(xml_, "<a:t>", shown(line.text), "</a:t></a:r></a:p>");
    }
    OOXML::append(xml_,
                  R"(</c:rich></c:tx><c:layout><c:manualLayout><c:xMode val="edge"/><c:yMode val="edge"/>)",
                  R"(<c:x val=")", text(FramePart{left}), R"("/><c:y val=")", text(FramePart{top}),
                  R"("/></c:manualLayout></c:layout><c:overlay val="0"/></c:title>)");
  }

  void appendPlot() {
    OOXML::append(xml_, "<c:", plotElement(), ">");
    if (isBar_) {
      OOXML::append(xml_, R"(<c:barDir val=")", plan_.isHorizontal ? "bar" : "col",
                    R"("/><c:grouping val="clustered"/>)");
    } else {
      xml_ += R"(<c:grouping val="standard"/>)";
    }
    xml_ += R"(<c:varyColors val="0"/>)";
    for (std::size_t i = 0; i < binding_.chart().valueColumns.size(); ++i)
      appendSeries(i);
    if (isBar_) {
      OOXML::append(xml_, R"(<c:gapWidth val=")", plan_.gapWidth, R"("/><c:overlap val="0"/>)");
    } else {
      xml_ += R"(<c:marker val="1"/>)";
    }
    OOXML::append(xml_, R"(<c:axId val="100"/><c:axId val="200"/></c:)", plotElement(), ">");
  }

  void appendSeries(std::size_t index) {
    const auto column = static_cast<std::size_t>(binding_.chart().valueColumns[index]);
    const char letter = ResearchChartAuthor::letter(static_cast<std::int64_t>(index) + 1);
    const std::string_view letterText(&letter, 1);
    OOXML::append(xml_, R"(<c:ser><c:idx val=")", index, R"("/><c:order val=")", index,
                  R"("/><c:tx><c:strRef><c:f>'Data'!$)", letterText,
                  R"($1</c:f><c:strCache><c:ptCount val="1"/><c:pt idx="0"><c:v>)",
                  shown(ResearchChartAuthor::seriesName(binding_.dataset->columns[column])),
                  "</c:v></c:pt></c:strCache></c:strRef></c:tx>");
    appendSeriesLooks(index);
    xml_ += "<c:cat><c:strRef>";
    appendCache("strCache", "A", static_cast<std::size_t>(binding_.chart().categoryColumn));
    xml_ += "</c:strRef></c:cat><c:val><c:numRef>";
    appendCache("numCache", letterText, column);
    xml_ += "</c:numRef></c:val>";
    xml_ += isBar_ ? "</c:ser>" : R"(<c:smooth val="0"/></c:ser>)";
  }

  void appendSeriesLooks(std::size_t index) {
    const std::string_view colour = seriesColours[index];
    if (!isBar_) {
      appendLineProperties(xml_, seriesLine, colour);
      OOXML::append(xml_, R"(<c:marker><c:symbol val=")", markers[index], R"("/><c:size val=")",
                    binding_.cells->size() > mostLargeMarkers ? smallMarker : largeMarker, R"("/><c:spPr>)");
      appendFill(xml_, colour);
      xml_ += "<a:ln><a:noFill/></a:ln></c:spPr></c:marker>";
      return;
    }
    xml_ += "<c:spPr>";
    appendFill(xml_, colour);
    xml_ += R"(<a:ln><a:noFill/></a:ln></c:spPr><c:invertIfNegative val="0"/>)";
    if (!plan_.showsValues) return;
    OOXML::append(xml_, R"(<c:dLbls><c:numFmt formatCode=")", plan_.valueFormat,
                  R"(" sourceLinked="0"/><c:spPr><a:noFill/><a:ln><a:noFill/></a:ln></c:spPr>)");
    appendTextProperties(xml_, {plan_.numberSize, titleColour});
    xml_ +=
        R"(<c:dLblPos val="outEnd"/><c:showLegendKey val="0"/><c:showVal val="1"/><c:showCatName val="0"/>)"
        R"(<c:showSerName val="0"/><c:showPercent val="0"/><c:showBubbleSize val="0"/></c:dLbls>)";
  }

  /// The reference to a column below its heading, and its cells. Every category has a point, even if it is
  /// blank; a missing value has none: it is shown as a gap, not as zero.
  void appendCache(std::string_view element, std::string_view letter, std::size_t column) {
    const auto& cells = *binding_.cells;
    const bool areNumbers = element == "numCache";
    OOXML::append(xml_, "<c:f>'Data'!$", letter, "$2:$", letter, "$", cells.size() + 1, "</c:f><c:", element,
                  ">", areNumbers ? "<c:formatCode>General</c:formatCode>" : "", R"(<c:ptCount val=")",
                  cells.size(), R"("/>)");
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const Cell& cell = cells[i][column];
      if (areNumbers && cell.number() == nullptr) continue;
      OOXML::append(xml_, R"(<c:pt idx=")", i, R"("><c:v>)", shown(cell.displayText()), "</c:v></c:pt>");
    }
    OOXML::append(xml_, "</c:", element, ">");
  }

  void appendCategoryAxis() {
    OOXML::append(xml_, R"(<c:catAx><c:axId val="100"/><c:scaling><c:orientation val=")",
                  plan_.isHorizontal ? "maxMin" : "minMax",
                  R"("/></c:scaling><c:delete val="0"/><c:axPos val=")", plan_.isHorizontal ? "l" : "b",
                  R"("/><c:numFmt formatCode="General" sourceLinked="0"/>)",
                  R"(<c:majorTickMark val="none"/><c:minorTickMark val="none"/><c:tickLblPos val=")",
                  plan_.labels == Labels::none ? "none"
                  : plan_.hasNegatives         ? "low"
                                               : "nextTo",
                  R"("/>)");
    appendLineProperties(xml_, axisLine, labelColour);
    const bool isWrapped = plan_.labels == Labels::flat && !plan_.isHorizontal;
    appendTextProperties(xml_, {plan_.labelSize, titleColour},
                         plan_.labels == Labels::diagonal ? R"(<a:bodyPr rot="-2700000" vert="horz"/>)"
                         : isWrapped                      ? R"(<a:bodyPr rot="0" vert="horz"/>)"
                                                          : R"(<a:bodyPr/>)");
    OOXML::append(
        xml_, R"(<c:crossAx val="200"/><c:crosses val="autoZero"/><c:auto val="0"/><c:lblAlgn val="ctr"/>)",
        R"(<c:lblOffset val="100"/><c:tickLblSkip val="1"/><c:noMultiLvlLbl val="1"/></c:catAx>)");
  }

  void appendValueAxis() {
    OOXML::append(xml_, R"(<c:valAx><c:axId val="200"/><c:scaling><c:orientation val="minMax"/>)",
                  plan_.isPinnedAtMost ? R"(<c:max val="0"/>)" : "",
                  plan_.isPinnedAtLeast ? R"(<c:min val="0"/>)" : "",
                  R"(</c:scaling><c:delete val="0"/><c:axPos val=")", plan_.isHorizontal ? "b" : "l",
                  R"("/><c:majorGridlines>)");
    appendLineProperties(xml_, gridLine, gridColour);
    xml_ += "</c:majorGridlines>";
    if (!plan_.axisTitle.empty())
      appendTitle({{plan_.axisTitle, {plan_.axisTitleSize, labelColour}}}, 0, plan_.axisTitleTop);
    OOXML::append(xml_, R"(<c:numFmt formatCode=")", plan_.axisFormat,
                  R"(" sourceLinked="0"/><c:majorTickMark val="none"/><c:minorTickMark val="none"/>)",
                  R"(<c:tickLblPos val="nextTo"/><c:spPr><a:ln><a:noFill/></a:ln></c:spPr>)");
    appendTextProperties(xml_, {plan_.numberSize, labelColour});
    OOXML::append(xml_, R"(<c:crossAx val="100"/><c:crosses val=")", plan_.isHorizontal ? "max" : "autoZero",
                  R"("/><c:crossBetween val="between"/></c:valAx>)");
  }

  void appendLegend() {
    OOXML::append(xml_, R"(<c:legend><c:legendPos val="t"/><c:layout><c:manualLayout><c:xMode val="edge"/>)",
                  R"(<c:yMode val="edge"/><c:x val="0"/><c:y val=")", text(FramePart{plan_.legendTop}),
                  R"("/></c:manualLayout></c:layout><c:overlay val="0"/>)");
    appendTextProperties(xml_, {plan_.legendSize, titleColour});
    xml_ += "</c:legend>";
  }

  const Binding& binding_;
  const ChartPlan& plan_;
  const SlideScript::Languages& languages_;
  bool isBar_;
  std::string xml_;
};

}  // namespace

std::string slideChartXML(const Binding& binding, const ChartSize& frame,
                          const SlideScript::Languages& languages) {
  const ChartPlan plan = chartPlan(binding, frame);
  return ChartDrawing(binding, plan, languages).xml();
}

}  // namespace zelvo
