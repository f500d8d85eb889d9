#include "DocumentRuntime/Authoring/PresentationFrame.hpp"

#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

/// The attributes of every root, after the name of its element; open at the end.
constexpr std::string_view namespaces =
    R"( xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main")"
    R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")"
    R"( xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main")";

constexpr std::string_view groupProperties =
    R"(<p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr><a:xfrm>)"
    R"(<a:off x="0" y="0"/><a:ext cx="0" cy="0"/><a:chOff x="0" y="0"/><a:chExt cx="0" cy="0"/></a:xfrm></p:grpSpPr>)";

constexpr int firstSlideID = 256;  ///< the smallest that the format allows

/// Format schemes must list three of each: subtle, moderate, intense. Here all three are equal.
std::string threeTimes(std::string_view xml) {
  std::string out;
  for (int i = 0; i < 3; ++i)
    out += xml;
  return out;
}

void appendColour(std::string& xml, std::string_view name, std::string_view value) {
  OOXML::append(xml, "<a:", name, R"(><a:srgbClr val=")", value, R"("/></a:)", name, ">");
}

}  // namespace

std::string DocumentAuthor::presentationXML(std::size_t slideCount) {
  std::string xml;
  OOXML::append(
      xml, "<p:presentation", namespaces,
      R"(><p:sldMasterIdLst><p:sldMasterId id="2147483648" r:id="rId1"/></p:sldMasterIdLst><p:sldIdLst>)");
  for (std::size_t i = 0; i < slideCount; ++i) {
    OOXML::append(xml, R"(<p:sldId id=")", firstSlideID + i, R"(" r:id="rId)", i + 2, R"("/>)");
  }
  OOXML::append(xml, R"(</p:sldIdLst><p:sldSz cx=")", slideWidth, R"(" cy=")", slideHeight,
                R"("/><p:notesSz cx="6858000" cy="9144000"/></p:presentation>)");
  return xml;
}

std::string DocumentAuthor::masterXML() {
  std::string xml;
  OOXML::append(
      xml, "<p:sldMaster", namespaces, "><p:cSld><p:spTree>", groupProperties,
      "</p:spTree></p:cSld>"
      R"(<p:clrMap accent1="accent1" accent2="accent2" accent3="accent3" accent4="accent4" accent5="accent5" )"
      R"(accent6="accent6" bg1="lt1" bg2="lt2" folHlink="folHlink" hlink="hlink" tx1="dk1" tx2="dk2"/>)"
      R"(<p:sldLayoutIdLst><p:sldLayoutId id="2147483649" r:id="rId1"/></p:sldLayoutIdLst>)"
      "<p:txStyles><p:titleStyle/><p:bodyStyle/><p:otherStyle/></p:txStyles></p:sldMaster>");
  return xml;
}

std::string DocumentAuthor::layoutXML() {
  std::string xml;
  OOXML::append(xml, "<p:sldLayout", namespaces,
                R"( type="blank" preserve="1"><p:cSld name="Blank"><p:spTree>)", groupProperties,
                "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>");
  return xml;
}

std::string DocumentAuthor::themeXML(const ThemeColours& colours) {
  const std::string fills = threeTimes(R"(<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>)");
  const std::string lines = threeTimes(
      R"(<a:ln w="9525"><a:solidFill><a:schemeClr val="phClr"/></a:solidFill><a:prstDash val="solid"/></a:ln>)");
  const std::string effects = threeTimes("<a:effectStyle><a:effectLst/></a:effectStyle>");
  std::string xml =
      R"(<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" name="Zelvo"><a:themeElements>)"
      R"(<a:clrScheme name="Zelvo">)";
  appendColour(xml, "dk1", colours.dark[0]);
  appendColour(xml, "lt1", colours.light[0]);
  appendColour(xml, "dk2", colours.dark[1]);
  appendColour(xml, "lt2", colours.light[1]);
  for (std::size_t i = 0; i < colours.accents.size(); ++i)
    appendColour(xml, "accent" + std::to_string(i + 1), colours.accents[i]);
  appendColour(xml, "hlink", "1A73E8");
  appendColour(xml, "folHlink", "681DA8");
  OOXML::append(
      xml,
      R"(</a:clrScheme><a:fontScheme name="Zelvo"><a:majorFont><a:latin typeface="Arial"/><a:ea typeface=""/>)"
      R"(<a:cs typeface=""/></a:majorFont><a:minorFont><a:latin typeface="Arial"/><a:ea typeface=""/>)"
      R"(<a:cs typeface=""/></a:minorFont></a:fontScheme><a:fmtScheme name="Zelvo"><a:fillStyleLst>)",
      fills, "</a:fillStyleLst><a:lnStyleLst>", lines, "</a:lnStyleLst><a:effectStyleLst>", effects,
      "</a:effectStyleLst><a:bgFillStyleLst>", fills,
      "</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>");
  return xml;
}

void DocumentAuthor::appendSlideStart(std::string& xml) {
  OOXML::append(
      xml, "<p:sld", namespaces,
      R"(><p:cSld><p:bg><p:bgPr><a:solidFill><a:srgbClr val="FFFFFF"/></a:solidFill><a:effectLst/></p:bgPr>)"
      "</p:bg><p:spTree>",
      groupProperties);
}

void DocumentAuthor::appendSlideEnd(std::string& xml) {
  xml += "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sld>";
}

void DocumentAuthor::appendTextBox(std::string& xml, int id, std::int64_t y, std::int64_t height,
                                   int fontSize, std::string_view text) {
  OOXML::append(
      xml, R"(<p:sp><p:nvSpPr><p:cNvPr id=")", id, R"(" name="Text )", id,
      R"("/><p:cNvSpPr txBox="1"/><p:nvPr/></p:nvSpPr><p:spPr><a:xfrm><a:off x=")", contentLeft, R"(" y=")",
      y, R"("/><a:ext cx=")", contentWidth, R"(" cy=")", height,
      R"("/></a:xfrm><a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:noFill/></p:spPr><p:txBody>)"
      R"(<a:bodyPr wrap="square"/><a:lstStyle/><a:p><a:r><a:rPr lang="en-US" sz=")",
      fontSize,
      R"("><a:solidFill><a:srgbClr val="202124"/></a:solidFill><a:latin typeface="Arial"/></a:rPr><a:t>)",
      OOXML::escaped(text), "</a:t></a:r></a:p></p:txBody></p:sp>");
}

}  // namespace zelvo
