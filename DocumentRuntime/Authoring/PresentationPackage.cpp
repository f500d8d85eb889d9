#include "DocumentRuntime/Authoring/PresentationPackage.hpp"

#include <utility>

#include "DocumentRuntime/Authoring/PresentationFrame.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::Slide;
using DocumentAuthor::SlideChart;

std::string slideName(std::size_t index) {
  return "slide" + std::to_string(index + 1) + ".xml";
}
std::string chartName(std::size_t index) {
  return "chart" + std::to_string(index + 1) + ".xml";
}

constexpr const char* propertiesName = "docProps/core.xml";

ByteBuffer packageContentTypes(std::size_t slideCount, std::size_t chartCount, bool hasProperties) {
  std::vector<OOXML::ContentTypeOverride> overrides = {
      {"ppt/presentation.xml",
       "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml"},
      {"ppt/slideMasters/slideMaster1.xml",
       "application/vnd.openxmlformats-officedocument.presentationml.slideMaster+xml"},
      {"ppt/slideLayouts/slideLayout1.xml",
       "application/vnd.openxmlformats-officedocument.presentationml.slideLayout+xml"},
      {"ppt/theme/theme1.xml", "application/vnd.openxmlformats-officedocument.theme+xml"},
  };
  std::vector<std::string> chartParts;
  for (std::size_t i = 0; i < chartCount; ++i)
    chartParts.push_back("ppt/charts/" + chartName(i));
  std::vector<std::string> slideParts;
  for (std::size_t i = 0; i < slideCount; ++i)
    slideParts.push_back("ppt/slides/" + slideName(i));
  for (const std::string& part : chartParts) {
    overrides.push_back({part, "application/vnd.openxmlformats-officedocument.drawingml.chart+xml"});
  }
  for (const std::string& part : slideParts) {
    overrides.push_back({part, "application/vnd.openxmlformats-officedocument.presentationml.slide+xml"});
  }
  if (hasProperties)
    overrides.push_back({propertiesName, "application/vnd.openxmlformats-package.core-properties+xml"});
  return OOXML::contentTypes(overrides, chartCount > 0);
}

std::string propertiesXML(std::string_view title) {
  std::string xml;
  OOXML::append(
      xml,
      R"(<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" )",
      R"(xmlns:dc="http://purl.org/dc/elements/1.1/"><dc:title>)", OOXML::escaped(title),
      "</dc:title></cp:coreProperties>");
  return xml;
}

void addPackage(PartMap& parts, const std::optional<std::string>& title) {
  std::vector<OOXML::Relationship> relationships = {{"rId1", "officeDocument", "ppt/presentation.xml"}};
  if (title) {
    relationships.push_back({"rId2", std::string(OOXML::corePropertiesType), propertiesName});
    parts.set(propertiesName, OOXML::data(propertiesXML(*title)));
  }
  parts.set("_rels/.rels", OOXML::relationships(relationships));
}

void addPresentation(PartMap& parts, std::size_t slideCount) {
  std::vector<OOXML::Relationship> relationships = {{"rId1", "slideMaster", "slideMasters/slideMaster1.xml"}};
  for (std::size_t i = 0; i < slideCount; ++i) {
    relationships.push_back({"rId" + std::to_string(i + 2), "slide", "slides/" + slideName(i)});
  }
  parts.set("ppt/presentation.xml", OOXML::data(DocumentAuthor::presentationXML(slideCount)));
  parts.set("ppt/_rels/presentation.xml.rels", OOXML::relationships(relationships));
}

void addMaster(PartMap& parts, std::string_view themeXML) {
  parts.set("ppt/slideMasters/slideMaster1.xml", OOXML::data(DocumentAuthor::masterXML()));
  parts.set("ppt/slideMasters/_rels/slideMaster1.xml.rels",
            OOXML::relationships({{"rId1", "slideLayout", "../slideLayouts/slideLayout1.xml"},
                                  {"rId2", "theme", "../theme/theme1.xml"}}));
  parts.set("ppt/slideLayouts/slideLayout1.xml", OOXML::data(DocumentAuthor::layoutXML()));
  parts.set("ppt/slideLayouts/_rels/slideLayout1.xml.rels",
            OOXML::relationships({{"rId1", "slideMaster", "../slideMasters/slideMaster1.xml"}}));
  parts.set("ppt/theme/theme1.xml", OOXML::data(themeXML));
}

/// Takes the slide, so that no two copies of all slides exist.
void addSlide(PartMap& parts, std::size_t index, Slide slide) {
  std::vector<OOXML::Relationship> relationships = {
      {"rId1", "slideLayout", "../slideLayouts/slideLayout1.xml"}};
  if (slide.chart) relationships.push_back({"rId2", "chart", "../charts/" + chartName(*slide.chart)});
  parts.set("ppt/slides/" + slideName(index), OOXML::data(slide.xml));
  parts.set("ppt/slides/_rels/" + slideName(index) + ".rels", OOXML::relationships(relationships));
}

void addChart(PartMap& parts, std::size_t index, SlideChart chart) {
  parts.set("ppt/charts/" + chartName(index), OOXML::data(chart.xml));
  parts.set("ppt/charts/_rels/" + chartName(index) + ".rels",
            OOXML::relationships({{"rId1", "package", "../embeddings/" + chart.workbookName}}));
  if (chart.workbook.size() > 0) parts.set("ppt/embeddings/" + chart.workbookName, std::move(chart.workbook));
}

}  // namespace

PartMap DocumentAuthor::presentationPackage(PresentationPlan plan) {
  PartMap parts;
  parts.set("[Content_Types].xml",
            packageContentTypes(plan.slides.size(), plan.charts.size(), plan.title.has_value()));
  addPackage(parts, plan.title);
  addPresentation(parts, plan.slides.size());
  addMaster(parts, plan.themeXML);
  for (std::size_t i = 0; i < plan.slides.size(); ++i)
    addSlide(parts, i, std::exchange(plan.slides[i], {}));
  for (std::size_t i = 0; i < plan.charts.size(); ++i)
    addChart(parts, i, std::move(plan.charts[i]));
  return parts;
}

}  // namespace zelvo
