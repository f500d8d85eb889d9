#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"

#include <cstddef>
#include <string>
#include <utility>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Workbook/SheetAuthor.hpp"
#include "DocumentRuntime/Research/Workbook/SheetLimits.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::WorkbookPart;
using DocumentAuthor::WorkbookPlan;
using Kind = ResearchSheet::Kind;

/// The charts are below each other on the Overview sheet, below its two rows of text.
constexpr std::size_t firstChartRow = 3;
constexpr std::size_t rowsPerChart = 22;

std::vector<OOXML::Relationship> sheetRelationships(Kind kind) {
  if (kind == Kind::overview) return {{"rIdDrawing", "drawing", "../drawings/drawing1.xml"}};
  if (kind == Kind::data) return {{"rIdTable", "table", "../tables/table1.xml"}};
  return {};
}

/// The table over the Data sheet, whose headings are `headings`.
std::string tableXML(const ResearchSheet::Row& headings, std::size_t datasetRows) {
  std::string reference;
  OOXML::append(reference, "A1:", columnLetters(static_cast<std::int64_t>(headings.size())), datasetRows + 1);
  std::string xml;
  OOXML::append(xml, R"(<table xmlns=")", DocumentAuthor::spreadsheetNamespace,
                R"(" id="1" name="ResearchData" displayName="ResearchData" ref=")", reference,
                R"(" totalsRowShown="0"><autoFilter ref=")", reference, R"("/><tableColumns count=")",
                headings.size(), R"(">)");
  for (std::size_t i = 0; i < headings.size(); ++i) {
    OOXML::append(xml, R"(<tableColumn id=")", i + 1, R"(" name=")",
                  OOXML::escaped(headings[i].displayText()), R"("/>)");
  }
  xml += R"(</tableColumns><tableStyleInfo name="TableStyleMedium2" showFirstColumn="0" showLastColumn="0" )"
         R"(showRowStripes="1" showColumnStripes="0"/></table>)";
  return xml;
}

std::string drawingXML(std::size_t charts) {
  std::string xml =
      R"(<xdr:wsDr xmlns:xdr="http://schemas.openxmlformats.org/drawingml/2006/spreadsheetDrawing" )"
      R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main">)";
  for (std::size_t k = 0; k < charts; ++k) {
    OOXML::append(
        xml, "<xdr:oneCellAnchor><xdr:from><xdr:col>0</xdr:col><xdr:colOff>0</xdr:colOff><xdr:row>",
        k * rowsPerChart + firstChartRow,
        R"(</xdr:row><xdr:rowOff>0</xdr:rowOff></xdr:from><xdr:ext cx="8382000" cy="3810000"/>)"
        R"(<xdr:graphicFrame macro=""><xdr:nvGraphicFramePr><xdr:cNvPr id=")",
        k + 1, R"(" name="Chart )", k + 1,
        R"("/><xdr:cNvGraphicFramePr/></xdr:nvGraphicFramePr><xdr:xfrm><a:off x="0" y="0"/>)"
        R"(<a:ext cx="8382000" cy="3810000"/></xdr:xfrm><a:graphic>)"
        R"(<a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/chart">)"
        R"(<c:chart xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" )"
        R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" r:id="rId)",
        k + 1, R"("/></a:graphicData></a:graphic></xdr:graphicFrame><xdr:clientData/></xdr:oneCellAnchor>)");
  }
  xml += "</xdr:wsDr>";
  return xml;
}

WorkbookPart tablePart(const ResearchWorkbookContent& content, const ResearchSheet& data) {
  return {.folder = "tables",
          .name = "table1.xml",
          .contentType = "application/vnd.openxmlformats-officedocument.spreadsheetml.table+xml",
          .xml = tableXML(data.rows.front(), content.cells.size()),
          .relationships = {}};
}

std::string chartName(std::size_t index) {
  return "chart" + std::to_string(index + 1) + ".xml";
}

WorkbookPart drawingPart(std::size_t charts) {
  std::vector<OOXML::Relationship> relationships;
  for (std::size_t k = 0; k < charts; ++k)
    relationships.push_back({"rId" + std::to_string(k + 1), "chart", "../charts/" + chartName(k)});
  return {.folder = "drawings",
          .name = "drawing1.xml",
          .contentType = "application/vnd.openxmlformats-officedocument.drawing+xml",
          .xml = drawingXML(charts),
          .relationships = std::move(relationships)};
}

WorkbookPart chartPart(const ResearchWorkbookContent& content, std::size_t index) {
  return {.folder = "charts",
          .name = chartName(index),
          .contentType = "application/vnd.openxmlformats-officedocument.drawingml.chart+xml",
          .xml = ResearchChartAuthor::xml(*content.dataset, content.cells, content.dataset->charts[index],
                                          /*embedded=*/false, /*columnMap=*/{}, /*zeroBaseline=*/true),
          .relationships = {}};
}

}  // namespace

PartMap researchWorkbookPackage(const ResearchWorkbookContent& content, WorkbookTheme theme) {
  WorkbookPlan plan;
  plan.beforeSheets = R"(<bookViews><workbookView activeTab="0"/></bookViews>)";
  if (!content.calculations.empty())
    plan.afterSheets = R"(<calcPr calcMode="auto" fullCalcOnLoad="1" forceFullCalc="1"/>)";
  plan.stylesXML = researchStylesXML(content.hasScope);
  if (theme == WorkbookTheme::included) plan.themeXML = ResearchChartAuthor::themeXML();
  BoundedZIP::OutputSize drawn;
  for (const ResearchSheet& sheet : content.sheets) {
    plan.sheets.push_back({.name = std::string(sheet.name),
                           .xml = researchWorksheetXML(sheet, content),
                           .relationships = sheetRelationships(sheet.kind)});
    drawn.add(0, plan.sheets.back().xml.size());
    if (sheet.kind == Kind::data) plan.parts.push_back(tablePart(content, sheet));
  }
  const std::size_t charts = content.dataset->charts.size();
  if (charts > 0) plan.parts.push_back(drawingPart(charts));
  for (std::size_t k = 0; k < charts; ++k) {
    plan.parts.push_back(chartPart(content, k));
    drawn.add(0, plan.parts.back().xml.size());
  }
  return DocumentAuthor::workbookPackage(plan);
}

ByteBuffer ResearchWorkbook::make(std::string_view title, const ResearchSpreadsheet& content,
                                  const AllowedSources& sources,
                                  const std::optional<ResearchSourceScope>& sourceScope, WorkbookTheme theme,
                                  const std::stop_token& stop) {
  content.validate(/*requiresChart=*/false, sources, sourceScope);
  const auto written = ResearchWorkbookContent::of(title, content, sources, sourceScope);
  ResearchSheetLimits::check(written);
  ByteBuffer bytes = BoundedZIP::write(researchWorkbookPackage(written, theme), stop);
  readBackResearchWorkbook(bytes.view(), written, stop);
  return bytes;
}

}  // namespace zelvo
