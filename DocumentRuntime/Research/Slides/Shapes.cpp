#include "DocumentRuntime/Research/Slides/Shapes.hpp"

#include <cmath>

#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using SlideShapes::appendFill;
using SlideShapes::Area;
using SlideShapes::hundredthsPerPoint;
using SlideShapes::Identity;
using SlideShapes::TextStyle;

int hundredths(double points) {
  return static_cast<int>(std::lround(points * hundredthsPerPoint));
}

void appendIdentity(std::string& xml, const Identity& identity) {
  OOXML::append(xml, R"(<p:cNvPr id=")", identity.id, R"(" name=")", identity.name, "\"");
  if (!identity.description.empty())
    OOXML::append(xml, R"( descr=")", OOXML::escaped(identity.description), "\"");
  xml += "/>";
}

void appendArea(std::string& xml, const Area& area) {
  OOXML::append(xml, R"(<a:off x=")", area.x, R"(" y=")", area.y, R"("/><a:ext cx=")", area.width,
                R"(" cy=")", area.height, R"("/>)");
}

void appendTextStart(std::string& xml, const Identity& identity, const Area& area, const TextStyle& style) {
  xml += "<p:sp><p:nvSpPr>";
  appendIdentity(xml, identity);
  xml += identity.isTitle ? R"(<p:cNvSpPr/><p:nvPr><p:ph type="title"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm>)"
                          : R"(<p:cNvSpPr txBox="1"/><p:nvPr/></p:nvSpPr><p:spPr><a:xfrm>)";
  appendArea(xml, area);
  OOXML::append(xml,
                R"(</a:xfrm><a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:noFill/></p:spPr><p:txBody>)",
                R"(<a:bodyPr wrap="square" lIns="0" tIns="0" rIns="0" bIns="0" anchor=")", style.anchor,
                R"("><a:noAutofit/></a:bodyPr><a:lstStyle/>)");
}

/// Line heights are fixed, so that a text stays inside its area with a fallback font of taller lines.
void appendParagraphProperties(std::string& xml, const TextStyle& style, bool first, bool isRightToLeft) {
  OOXML::append(xml, R"(<a:pPr algn=")", isRightToLeft || style.alignsRight ? "r" : "l",
                isRightToLeft ? R"(" rtl="1">)" : R"(">)", R"(<a:lnSpc><a:spcPts val=")",
                hundredths(style.size * SlideText::lineSpacing), R"("/></a:lnSpc><a:spcBef><a:spcPts val=")",
                first ? 0 : hundredths(style.size * SlideText::paragraphSpacing),
                R"("/></a:spcBef><a:buNone/></a:pPr>)");
}

void appendRunProperties(std::string& xml, const TextStyle& style, std::string_view language) {
  OOXML::append(xml, R"(<a:rPr lang=")", language, R"(" sz=")", hundredths(style.size), R"(" b=")",
                style.bold ? 1 : 0, R"(">)");
  appendFill(xml, style.colour);
  xml += R"(<a:latin typeface="Arial"/><a:cs typeface="Arial"/></a:rPr>)";
}

}  // namespace

void SlideShapes::appendFill(std::string& xml, std::string_view colour) {
  OOXML::append(xml, R"(<a:solidFill><a:schemeClr val=")", colour, R"("/></a:solidFill>)");
}

void SlideShapes::appendText(std::string& xml, const Identity& identity, const Area& area,
                             const std::vector<std::string>& paragraphs, const TextStyle& style,
                             const SlideScript::Languages& languages) {
  appendTextStart(xml, identity, area, style);
  for (std::size_t i = 0; i < paragraphs.size(); ++i) {
    xml += "<a:p>";
    appendParagraphProperties(xml, style, i == 0, SlideScript::isRightToLeft(paragraphs[i]));
    xml += "<a:r>";
    appendRunProperties(xml, style, languages.tagOf(paragraphs[i]));
    OOXML::append(xml, "<a:t>", OOXML::escaped(paragraphs[i]), "</a:t></a:r></a:p>");
  }
  xml += "</p:txBody></p:sp>";
}

void SlideShapes::appendSlideNumber(std::string& xml, const Identity& identity, const Area& area,
                                    std::size_t number, const TextStyle& style) {
  appendTextStart(xml, identity, area, style);
  xml += "<a:p>";
  appendParagraphProperties(xml, style, true, false);
  xml += R"(<a:fld id="{6E9C5C1B-0B4D-4A0E-9B0C-3F0E5A5D7C11}" type="slidenum">)";
  appendRunProperties(xml, style, "en-US");
  OOXML::append(xml, "<a:t>", number, "</a:t></a:fld></a:p></p:txBody></p:sp>");
}

void SlideShapes::appendRectangle(std::string& xml, const Identity& identity, const Area& area,
                                  std::string_view colour) {
  xml += "<p:sp><p:nvSpPr>";
  appendIdentity(xml, identity);
  xml += "<p:cNvSpPr/><p:nvPr/></p:nvSpPr><p:spPr><a:xfrm>";
  appendArea(xml, area);
  xml += R"(</a:xfrm><a:prstGeom prst="rect"><a:avLst/></a:prstGeom>)";
  appendFill(xml, colour);
  xml += "<a:ln><a:noFill/></a:ln></p:spPr></p:sp>";
}

void SlideShapes::appendChart(std::string& xml, const Identity& identity, const Area& area) {
  xml += "<p:graphicFrame><p:nvGraphicFramePr>";
  appendIdentity(xml, identity);
  xml += "<p:cNvGraphicFramePr/><p:nvPr/></p:nvGraphicFramePr><p:xfrm>";
  appendArea(xml, area);
  xml += R"(</p:xfrm><a:graphic><a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/chart">)"
         R"(<c:chart xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" r:id="rId2"/>)"
         R"(</a:graphicData></a:graphic></p:graphicFrame>)";
}

}  // namespace zelvo
