#include <cstdint>
#include <utility>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Authoring/PresentationFrame.hpp"
#include "DocumentRuntime/Authoring/PresentationPackage.hpp"
#include "DocumentRuntime/Authoring/SlideGeometry.hpp"
#include "DocumentRuntime/Authoring/TableChart.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::TablePage;

constexpr int titleID = 2;
constexpr std::int64_t titleY = 300'000;
constexpr std::int64_t titleHeight = 900'000;
constexpr int titleFontSize = 2800;  ///< hundredths of a point
constexpr double titleFontPoints = 28;
constexpr std::int64_t maximumTitleLines = 2;

constexpr int footerID = 4;
constexpr std::int64_t footerY = 6'200'000;
constexpr std::int64_t footerHeight = 540'000;
constexpr int footerFontSize = 1000;

constexpr std::int64_t chartHeight = 4'572'000;

constexpr DocumentAuthor::ThemeColours tableColours = {
    .dark = {"202124", "334E68"},
    .light = {"FFFFFF", "F1F3F5"},
    .accents = {"334E68", "627D98", "829AB1", "9FB3C8", "BCCCDC", "D9E2EC"},
};

/// Upper bound of a slide's XML without its texts and its content.
constexpr std::size_t frameBytes = 4096;

/// Opens a graphic frame at the top of the content box, with its width.
void appendFrameStart(std::string& xml, std::string_view name, std::int64_t height) {
  OOXML::append(xml, R"(<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id="3" name=")", name,
                R"("/><p:cNvGraphicFramePr/><p:nvPr/></p:nvGraphicFramePr><p:xfrm><a:off x=")",
                DocumentAuthor::contentLeft, R"(" y=")", DocumentAuthor::contentTop, R"("/><a:ext cx=")",
                DocumentAuthor::contentWidth, R"(" cy=")", height, R"("/></p:xfrm><a:graphic>)");
}

std::string chartFrame() {
  std::string xml;
  appendFrameStart(xml, "Editable column chart", chartHeight);
  xml += R"(<a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/chart">)"
         R"(<c:chart xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" r:id="rId2"/>)"
         R"(</a:graphicData></a:graphic></p:graphicFrame>)";
  return xml;
}

std::string footerText(const SourceTable& table) {
  std::string text =
      table.sourceName + " · " + table.sheetName + "!" + table.selectedRange + " · saved snapshot";
  if (table.usesCachedFormulaValues()) text += " · cached formula results";
  return text;
}

std::string_view rowFill(std::size_t row) {
  if (row == 0) return "EDEFF2";
  return row % 2 == 1 ? "FFFFFF" : "F7F8FA";
}

void appendTableRow(std::string& xml, const std::vector<std::string>& cells, std::size_t row,
                    std::int64_t height) {
  OOXML::append(xml, R"(<a:tr h=")", height, R"(">)");
  for (const std::string& text : cells) {
    OOXML::append(
        xml,
        R"(<a:tc><a:txBody><a:bodyPr wrap="square"/><a:lstStyle/><a:p><a:pPr/><a:r><a:rPr lang="en-US" )"
        R"(sz="1400" b=")",
        row == 0 ? "1" : "0",
        R"("><a:solidFill><a:srgbClr val="202124"/></a:solidFill><a:latin typeface="Arial"/></a:rPr><a:t>)",
        OOXML::escaped(text),
        R"(</a:t></a:r><a:endParaRPr lang="en-US"/></a:p></a:txBody><a:tcPr marL="91440" marR="91440" )"
        R"(marT="45720" marB="45720"><a:solidFill><a:srgbClr val=")",
        rowFill(row), R"("/></a:solidFill></a:tcPr></a:tc>)");
  }
  xml += "</a:tr>";
}

void appendTable(std::string& xml, const TablePage& rows) {
  const std::size_t columns = rows.front().size();
  const std::int64_t columnWidth = DocumentAuthor::contentWidth / static_cast<std::int64_t>(columns);
  std::vector<std::int64_t> heights;
  std::int64_t totalHeight = 0;
  for (const auto& row : rows)
    totalHeight += heights.emplace_back(DocumentAuthor::rowHeight(row));

  appendFrameStart(xml, "Source table", totalHeight);
  xml += R"(<a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/table">)"
         R"(<a:tbl><a:tblPr firstRow="1" bandRow="1"/><a:tblGrid>)";
  for (std::size_t i = 0; i < columns; ++i)
    OOXML::append(xml, R"(<a:gridCol w=")", columnWidth, R"("/>)");
  xml += "</a:tblGrid>";
  for (std::size_t row = 0; row < rows.size(); ++row)
    appendTableRow(xml, rows[row], row, heights[row]);
  xml += "</a:tbl></a:graphicData></a:graphic></p:graphicFrame>";
}

/// A slide. `content` is XML.
std::string slideXML(std::string_view title, std::string_view content, std::string_view footer) {
  std::string xml;
  xml.reserve(title.size() + content.size() + footer.size() + frameBytes);
  DocumentAuthor::appendSlideStart(xml);
  DocumentAuthor::appendTextBox(xml, titleID, titleY, titleHeight, titleFontSize, title);
  xml += content;
  DocumentAuthor::appendTextBox(xml, footerID, footerY, footerHeight, footerFontSize, footer);
  DocumentAuthor::appendSlideEnd(xml);
  return xml;
}

void requireTwoLines(std::string_view title, const char* detail) {
  if (DocumentAuthor::estimatedLines(title, DocumentAuthor::contentWidthPoints, titleFontPoints) >
      maximumTitleLines) {
    throw DocumentError::unsupported(detail);
  }
}

/// The titles of the table's slides.
std::vector<std::string> tableTitles(std::string_view title, std::size_t pageCount) {
  std::vector<std::string> titles;
  for (std::size_t i = 0; i < pageCount; ++i) {
    std::string& slideTitle = titles.emplace_back(title);
    if (pageCount > 1) OOXML::append(slideTitle, " · ", i + 1, "/", pageCount);
    requireTwoLines(slideTitle, RefusalDetail::longSlideTitle);
  }
  return titles;
}

std::string_view chartTitle(const ChartSelection& chart, std::string_view documentTitle) {
  const std::string_view title = chart.title.empty() ? documentTitle : std::string_view(chart.title);
  requireTwoLines(title, RefusalDetail::longChartTitle);
  return title;
}

/// The slides of a presentation. Every slide repeats the footer, whose sheet name has at most 64 characters
/// but may have millions of bytes.
class SlideList {
 public:
  explicit SlideList(std::string footer) : footer_(std::move(footer)) {}

  /// Throws `DocumentError` resourceLimit "output part" or "output archive".
  void add(std::string_view title, std::string_view content, std::optional<std::size_t> chart = {}) {
    slides_.push_back({.xml = slideXML(title, content, footer_), .chart = chart});
    size_.add(0, slides_.back().xml.size());
  }

  std::vector<DocumentAuthor::Slide> take() && { return std::move(slides_); }

 private:
  std::string footer_;
  std::vector<DocumentAuthor::Slide> slides_;
  BoundedZIP::OutputSize size_;
};

}  // namespace

ByteBuffer DocumentAuthor::pptx(const SourceTable& table, std::string_view title,
                                const std::optional<ChartSelection>& chart, const std::stop_token& stop) {
  const std::vector<TablePage> pages = tablePages(table);
  const std::vector<std::string> titles = tableTitles(title, pages.size());
  const std::string_view lastTitle = chart ? chartTitle(*chart, title) : std::string_view();

  SlideList slides(footerText(table));
  for (std::size_t i = 0; i < pages.size(); ++i) {
    std::string content;
    appendTable(content, pages[i]);
    slides.add(titles[i], content);
  }
  std::vector<SlideChart> charts;
  if (chart) {
    slides.add(lastTitle, chartFrame(), 0);
    charts.push_back({.xml = chartXML(table, *chart),
                      .workbookName = "chart-data.xlsx",
                      .workbook = chartWorkbook(table, *chart, stop)});
  }
  return BoundedZIP::write(presentationPackage({.slides = std::move(slides).take(),
                                                .charts = std::move(charts),
                                                .themeXML = themeXML(tableColours),
                                                .title = {}}),
                           stop);
}

}  // namespace zelvo
