#include "DocumentRuntime/Research/Slides/Author.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "DocumentRuntime/Authoring/PresentationFrame.hpp"
#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/Research/Slides/Shapes.hpp"
#include "DocumentRuntime/Research/Slides/Sources.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using ResearchSlide = ResearchPresentation::Slide;
using DocumentAuthor::emuPerPoint;
using SlideShapes::Area;
using SlideShapes::TextStyle;

// The slide is 12192000 × 6858000 EMU. Everything except the cover's band is inside the content box.
constexpr std::int64_t left = 609'600;
constexpr std::int64_t width = DocumentAuthor::contentWidth;

constexpr Area coverBand = {0, 0, 12'192'000, 3'200'400};
constexpr Area coverTitle = {left, 533'400, width, 2'286'000};
constexpr Area coverPoints = {left, 3'505'200, width, 2'413'000};
constexpr Area heading = {left, 381'000, width, 990'600};
constexpr Area headingRule = {left, 1'447'800, 914'400, 38'100};
constexpr Area points = {left, 1'727'200, width, 4'114'800};
constexpr Area chart = {left, 1'600'200, width, 3'352'800};
constexpr Area insightPanel = {left, 5'029'200, width, 838'200};
constexpr Area insight = {left + 152'400, 5'092'700, width - 304'800, 711'200};
constexpr Area footerRule = {left, 6'019'800, width, 9'525};
constexpr Area footerSources = {left, 6'096'000, 9'906'000, 635'000};
constexpr Area footerNumber = {left + 10'058'400, 6'096'000, 914'400, 165'100};

// Font sizes of short texts, in points.
constexpr int coverTitleSize = 44;
constexpr int coverPointSize = 22;
constexpr int headingSize = 30;
constexpr int pointSize = 28;
constexpr int insightSize = 20;
constexpr int footerSize = 10;

// Colours of the theme.
constexpr std::string_view textColour = "tx1";
constexpr std::string_view accentColour = "tx2";
constexpr std::string_view paperColour = "bg1";
constexpr std::string_view panelColour = "bg2";
constexpr std::string_view ruleColour = "accent4";
constexpr std::string_view footerColour = "accent2";

double inPoints(std::int64_t emu) {
  return static_cast<double>(emu) / static_cast<double>(emuPerPoint);
}

std::vector<std::string> flattened(const std::vector<std::string>& texts) {
  std::vector<std::string> flat;
  flat.reserve(texts.size());
  for (const std::string& text : texts)
    flat.push_back(SlideText::flattened(text));
  return flat;
}

/// Draws one slide, from top to bottom.
class SlideDrawing {
 public:
  SlideDrawing() { DocumentAuthor::appendSlideStart(xml_); }

  void rectangle(const char* name, const Area& area, std::string_view colour) {
    SlideShapes::appendRectangle(xml_, {.id = nextID_++, .name = name}, area, colour);
  }

  void title(const Area& area, const std::string& text, const TextStyle& style) {
    fittedText({.id = nextID_++, .name = "Title", .isTitle = true}, area, {text}, style);
  }

  void points(const Area& area, const std::vector<std::string>& texts, const TextStyle& style) {
    fittedText({.id = nextID_++, .name = "Points"}, area, texts, style);
  }

  void chart(const Area& area, const std::string& title) {
    SlideShapes::appendChart(
        xml_, {.id = nextID_++, .name = "Chart", .description = SlideText::flattened(title)}, area);
  }

  void footer(const std::vector<SlideSource>& sources, std::size_t number) {
    rectangle("Footer rule", footerRule, ruleColour);
    for (std::size_t i = 0; i < sources.size(); ++i)
      source(sources[i], i, sources.size());
    SlideShapes::appendSlideNumber(xml_, {.id = nextID_++, .name = "Slide number"}, footerNumber, number,
                                   {.size = footerSize, .colour = footerColour, .alignment = "r"});
  }

  std::string take() {
    DocumentAuthor::appendSlideEnd(xml_);
    return std::move(xml_);
  }

 private:
  /// Draws a text at the largest size that fits, up to that of `style`.
  void fittedText(const SlideShapes::Identity& identity, const Area& area,
                  const std::vector<std::string>& texts, TextStyle style) {
    const std::vector<std::string> paragraphs = flattened(texts);
    const std::int64_t indent = style.bulleted ? SlideShapes::bulletIndent : 0;
    style.size = SlideText::fittedSize(
        paragraphs,
        {.width = inPoints(area.width - indent), .height = inPoints(area.height), .largestSize = style.size});
    SlideShapes::appendText(xml_, identity, area, paragraphs, style);
  }

  /// Draws a source on a line of its own, with a smaller height if there are many.
  void source(const SlideSource& source, std::size_t index, std::size_t count) {
    const auto comfortable = static_cast<std::int64_t>(footerSize * SlideText::lineSpacing) * emuPerPoint;
    const std::int64_t height =
        std::min(comfortable, footerSources.height / static_cast<std::int64_t>(count));
    const int size = std::min(footerSize, static_cast<int>(inPoints(height) / SlideText::lineSpacing));
    const Area line = {footerSources.x, footerSources.y + static_cast<std::int64_t>(index) * height,
                       footerSources.width, height};
    SlideShapes::appendText(
        xml_,
        {.id = nextID_++, .name = "Source " + std::to_string(index + 1), .description = source.identity},
        line, {SlideText::abbreviated(source.name, source.observation, inPoints(line.width), size)},
        {.size = size, .colour = footerColour});
  }

  std::string xml_;
  int nextID_ = 2;  // 1 is the group of all shapes
};

void drawCover(SlideDrawing& drawing, const ResearchSlide& slide) {
  drawing.rectangle("Cover band", coverBand, accentColour);
  drawing.title(coverTitle, slide.title,
                {.size = coverTitleSize, .colour = paperColour, .bold = true, .anchor = "b"});
  drawing.points(coverPoints, slide.body, {.size = coverPointSize, .colour = textColour});
}

void drawHeading(SlideDrawing& drawing, const ResearchSlide& slide) {
  drawing.title(heading, slide.title,
                {.size = headingSize, .colour = accentColour, .bold = true, .anchor = "b"});
  drawing.rectangle("Heading rule", headingRule, footerColour);
}

void drawPoints(SlideDrawing& drawing, const ResearchSlide& slide) {
  drawHeading(drawing, slide);
  drawing.points(points, slide.body, {.size = pointSize, .colour = textColour, .bulleted = true});
}

void drawChart(SlideDrawing& drawing, const ResearchSlide& slide, const std::string& chartTitle) {
  drawHeading(drawing, slide);
  drawing.chart(chart, chartTitle);
  drawing.rectangle("Insight panel", insightPanel, panelColour);
  drawing.points(insight, slide.body, {.size = insightSize, .colour = textColour, .anchor = "ctr"});
}

}  // namespace

std::string researchSlide(const ResearchPresentation& presentation, std::size_t index,
                          const std::optional<ResearchSourceScope>& scope) {
  const ResearchSlide& slide = presentation.slides[index];
  SlideDrawing drawing;
  if (index == 0) {
    drawCover(drawing, slide);
  } else if (const ResearchSpreadsheet* dataset = presentation.chartDataset(slide)) {
    drawChart(drawing, slide,
              dataset->charts[static_cast<std::size_t>(slide.namedChart()->chartIndex)].title);
  } else {
    drawPoints(drawing, slide);
  }
  drawing.footer(slideSources(slide, scope), index + 1);
  return drawing.take();
}

}  // namespace zelvo
