#include "DocumentRuntime/Research/Slides/Author.hpp"

#include <cstdint>
#include <utility>

#include "DocumentRuntime/Authoring/PresentationFrame.hpp"
#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/Research/Slides/Shapes.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::contentLeft;
using DocumentAuthor::contentWidth;
using DocumentAuthor::emuPerPoint;
using Kind = SlideLayout::Kind;
using SlideShapes::Area;
using SlideShapes::TextStyle;

// In EMU. The slide is 12192000 × 6858000.
constexpr Area coverBand = {0, 0, 12'192'000, 3'352'800};
constexpr Area coverStrip = {0, 3'352'800, 12'192'000, 76'200};
constexpr std::int64_t headingMarkTop = 215'900;
constexpr std::int64_t headingMarkWidth = 762'000;
constexpr std::int64_t markThickness = 50'800;
constexpr std::int64_t rowRuleHeight = 9'525;

// Colours of the theme.
constexpr std::string_view textColour = "tx1";
constexpr std::string_view headingColour = "tx2";
constexpr std::string_view paperColour = "bg1";
constexpr std::string_view panelColour = "bg2";
constexpr std::string_view markColour = "accent2";
constexpr std::string_view footerColour = "accent5";
constexpr std::string_view ruleColour = "accent6";

/// Draws one slide, from top to bottom.
class SlideDrawing {
 public:
  SlideDrawing(const SlideLayout& layout, const SlideScript::Languages& languages)
      : layout_(layout), languages_(languages) {
    DocumentAuthor::appendSlideStart(xml_);
  }

  void cover() {
    rectangle("Cover band", coverBand, headingColour);
    rectangle("Cover strip", coverStrip, markColour);
    title({.size = layout_.titleSize, .colour = paperColour, .bold = true, .anchor = "b"});
    text({.id = nextID_++, .name = "Points"}, layout_.pointAreas.front(), layout_.points,
         {.size = layout_.textSize, .colour = textColour});
  }

  void heading() {
    const std::int64_t start = SlideScript::isRightToLeft(layout_.title)
                                   ? contentLeft + contentWidth - headingMarkWidth
                                   : contentLeft;
    rectangle("Heading mark", {start, headingMarkTop, headingMarkWidth, markThickness}, markColour);
    title({.size = layout_.titleSize, .colour = headingColour, .bold = true});
  }

  /// Each point in a row of its own, with a mark at its start and a rule between the rows.
  void points() {
    for (std::size_t i = 0; i < layout_.points.size(); ++i) {
      const std::string number = std::to_string(i + 1);
      Area row = layout_.pointAreas[i];
      if (i > 0) rectangle("Rule " + number, {contentLeft, row.y, contentWidth, rowRuleHeight}, ruleColour);
      const std::int64_t height = layout_.pointHeights[i];
      const bool isRightToLeft = SlideScript::isRightToLeft(layout_.points[i]);
      if (isRightToLeft) row.x = contentLeft;
      rectangle("Mark " + number,
                {isRightToLeft ? contentLeft + contentWidth - markThickness : contentLeft,
                 row.y + (row.height - height) / 2, markThickness, height},
                markColour);
      text({.id = nextID_++, .name = "Point " + number}, row, {layout_.points[i]},
           {.size = layout_.textSize, .colour = textColour, .anchor = "ctr"});
    }
  }

  void chart(const std::string& chartTitle) {
    SlideShapes::appendChart(
        xml_, {.id = nextID_++, .name = "Chart", .description = SlideText::flattened(chartTitle)},
        layout_.chartArea);
    const Area& insight = layout_.pointAreas.front();
    rectangle("Insight panel", {contentLeft, insight.y, contentWidth, insight.height}, panelColour);
    text({.id = nextID_++, .name = "Points"}, insight, layout_.points,
         {.size = layout_.textSize, .colour = textColour, .anchor = "ctr"});
  }

  /// The cover has no number, and no rule without sources.
  void footer(const std::vector<SlideSource>& sources, std::size_t number) {
    const bool isCover = layout_.kind == Kind::cover;
    if (!isCover || !sources.empty()) rectangle("Footer rule", layout_.footerRule, ruleColour);
    if (!sources.empty()) {
      text({.id = nextID_++, .name = "Sources label"}, layout_.sourcesLabelArea,
           {sources.size() > 1 ? "Sources" : "Source"},
           {.size = layout_.sourceSize, .colour = footerColour, .bold = true});
    }
    for (std::size_t i = 0; i < sources.size(); ++i)
      source(sources[i], i);
    if (isCover) return;
    SlideShapes::appendSlideNumber(xml_, {.id = nextID_++, .name = "Slide number"}, layout_.numberArea,
                                   number,
                                   {.size = layout_.numberSize, .colour = footerColour, .alignsRight = true});
  }

  std::string take() {
    DocumentAuthor::appendSlideEnd(xml_);
    return std::move(xml_);
  }

 private:
  void rectangle(const std::string& name, const Area& area, std::string_view colour) {
    SlideShapes::appendRectangle(xml_, {.id = nextID_++, .name = name}, area, colour);
  }

  void title(const TextStyle& style) {
    text({.id = nextID_++, .name = "Title", .isTitle = true}, layout_.titleArea, {layout_.title}, style);
  }

  void text(const SlideShapes::Identity& identity, const Area& area, const std::vector<std::string>& texts,
            const TextStyle& style) {
    SlideShapes::appendText(xml_, identity, area, texts, style, languages_);
  }

  void source(const SlideSource& source, std::size_t index) {
    const Area& line = layout_.sourceAreas[index];
    const double lineWidth = static_cast<double>(line.width) / static_cast<double>(emuPerPoint);
    text({.id = nextID_++, .name = "Source " + std::to_string(index + 1), .description = source.identity},
         line, {SlideText::abbreviated(source.name, source.observation, lineWidth, layout_.sourceSize)},
         {.size = layout_.sourceSize, .colour = footerColour});
  }

  const SlideLayout& layout_;
  const SlideScript::Languages& languages_;
  std::string xml_;
  int nextID_ = 2;  // 1 is the group of all shapes
};

}  // namespace

std::string researchSlide(const SlideLayout& layout, std::size_t number,
                          const std::vector<SlideSource>& sources, const std::string& chartTitle,
                          const SlideScript::Languages& languages) {
  SlideDrawing drawing(layout, languages);
  if (layout.kind == Kind::cover) {
    drawing.cover();
  } else {
    drawing.heading();
    if (layout.kind == Kind::chart) {
      drawing.chart(chartTitle);
    } else {
      drawing.points();
    }
  }
  drawing.footer(sources, number);
  return drawing.take();
}

}  // namespace zelvo
