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

ByteBuffer packageContentTypes(std::size_t slideCount, std::size_t chartCount) {
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
  return OOXML::contentTypes(overrides, chartCount > 0);
}

void addPresentation(PartMap& parts, std::size_t slideCount) {
  std::vector<OOXML::Relationship> relationships = {{"rId1", "slideMaster", "slideMasters/slideMaster1.xml"}};
  for (std::size_t i = 0; i < slideCount; ++i) {
    relationships.push_back({"rId" + std::to_string(i + 2), "slide", "slides/" + slideName(i)});
  }
  parts.set("_rels/.rels", OOXML::relationships({{"rId1", "officeDocument", "ppt/presentation.xml"}}));
  parts.set("ppt/presentation.xml", OOXML::data(DocumentAuthor::presentationXML(slideCount)));
  parts.set("ppt/_rels/presentation.xml.rels", OOXML::relationships(relationships));
}

void addMaster(PartMap& parts) {
  parts.set("ppt/slideMasters/slideMaster1.xml", OOXML::data(DocumentAuthor::masterXML()));
  parts.set("ppt/slideMasters/_rels/slideMaster1.xml.rels",
            OOXML::relationships({{"rId1", "slideLayout", "../slideLayouts/slideLayout1.xml"},
                                  {"rId2", "theme", "../theme/theme1.xml"}}));
  parts.set("ppt/slideLayouts/slideLayout1.xml", OOXML::data(DocumentAuthor::layoutXML()));
  parts.set("ppt/slideLayouts/_rels/slideLayout1.xml.rels",
            OOXML::relationships({{"rId1", "slideMaster", "../slideMasters/slideMaster1.xml"}}));
  parts.set("ppt/theme/theme1.xml", OOXML::data(DocumentAuthor::themeXML()));
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
  parts.set("ppt/embeddings/" + chart.workbookName, std::move(chart.workbook));
}

}  // namespace

PartMap DocumentAuthor::presentationPackage(std::vector<Slide> slides, std::vector<SlideChart> charts) {
  PartMap parts;
  parts.set("[Content_Types].xml", packageContentTypes(slides.size(), charts.size()));
  addPresentation(parts, slides.size());
  addMaster(parts);
  for (std::size_t i = 0; i < slides.size(); ++i)
    addSlide(parts, i, std::exchange(slides[i], {}));
  for (std::size_t i = 0; i < charts.size(); ++i)
    addChart(parts, i, std::move(charts[i]));
  return parts;
}

}  // namespace zelvo
