#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"

namespace zelvo::DocumentAuthor {

struct Slide {
  std::string xml;                   ///< the slide part, without the XML declaration
  std::optional<std::size_t> chart;  ///< index of the chart that the slide shows as "rId2"
};

struct SlideChart {
  std::string xml;           ///< the chart part, without the XML declaration
  std::string workbookName;  ///< of the embedded workbook, within ppt/embeddings/
  ByteBuffer workbook;       ///< empty if a chart before it has the workbook of that name
};

struct PresentationPlan {
  std::vector<Slide> slides;
  std::vector<SlideChart> charts;
  std::string themeXML;              ///< without the XML declaration
  std::optional<std::string> title;  ///< of the document's properties, which are left out without it
};

/// All parts of a presentation: slides and charts numbered from 1 in order, with one master and layout.
PartMap presentationPackage(PresentationPlan plan);

}  // namespace zelvo::DocumentAuthor
