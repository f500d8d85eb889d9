#include "DocumentRuntime/Authoring/TableChart.hpp"

#include <cstdint>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

/// The texts of the chart, escaped.
struct ChartTexts {
  std::string categoryTitle;
  std::string seriesName;
  std::string formatCode;
  std::vector<std::string> categories;
  std::vector<std::string> values;  ///< as stored, not as displayed: office programs calculate with them
};

ChartTexts textsOf(const SourceTable& table, const ChartSelection& chart) {
  const auto category = static_cast<std::size_t>(chart.categoryColumn);
  const auto value = static_cast<std::size_t>(chart.valueColumn);
  ChartTexts texts{
      .categoryTitle = OOXML::escaped(table.columns[category]),
      .seriesName = OOXML::escaped(table.columns[value]),
      .formatCode = OOXML::escaped(table.rows.front()[value].numberFormat.value_or("General")),
  };
  for (const auto& row : table.rows) {
    texts.categories.push_back(OOXML::escaped(row[category].displayText()));
    texts.values.push_back(OOXML::escaped(row[value].value.displayText()));
  }
  return texts;
}

void appendPoints(std::string& xml, const std::vector<std::string>& texts) {
  OOXML::append(xml, R"(<c:ptCount val=")", texts.size(), R"("/>)");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    OOXML::append(xml, R"(<c:pt idx=")", i, R"("><c:v>)", texts[i], "</c:v></c:pt>");
  }
}

std::string sheetXML(const ChartTexts& texts) {
  std::string xml;
  OOXML::append(xml, R"(<worksheet xmlns=")", DocumentAuthor::spreadsheetNamespace,
                R"("><sheetData><row r="1">)");
  DocumentAuthor::appendTextCell(xml, {.column = 1, .row = 1}, "", texts.categoryTitle);
  DocumentAuthor::appendTextCell(xml, {.column = 2, .row = 1}, "", texts.seriesName);
  xml += "</row>";
  for (std::size_t i = 0; i < texts.values.size(); ++i) {
    const auto row = static_cast<std::int64_t>(i + 2);
    OOXML::append(xml, R"(<row r=")", row, R"(">)");
    DocumentAuthor::appendTextCell(xml, {.column = 1, .row = row}, "", texts.categories[i]);
    DocumentAuthor::appendValueCell(xml, {.column = 2, .row = row}, "", texts.values[i]);
    xml += "</row>";
  }
  xml += "</sheetData></worksheet>";
  return xml;
}

}  // namespace

std::string DocumentAuthor::chartXML(const SourceTable& table, const ChartSelection& chart) {
  const ChartTexts texts = textsOf(table, chart);
  const std::size_t lastRow = texts.values.size() + 1;
  std::string xml =
      R"(<c:chartSpace xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" )"
      R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" )"
      R"(xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)"
      R"(<c:date1904 val="0"/><c:lang val="en-US"/><c:chart><c:autoTitleDeleted val="1"/><c:plotArea><c:layout/>)"
      R"(<c:barChart><c:barDir val="col"/><c:grouping val="clustered"/><c:varyColors val="0"/><c:ser><c:idx val="0"/>)"
      R"(<c:order val="0"/><c:tx><c:strRef><c:f>ChartData!$B$1</c:f><c:strCache><c:ptCount val="1"/><c:pt idx="0"><c:v>)";
  OOXML::append(
      xml, texts.seriesName,
      R"(</c:v></c:pt></c:strCache></c:strRef></c:tx><c:spPr><a:solidFill><a:srgbClr val="334E68"/></a:solidFill>)"
      R"(<a:ln><a:noFill/></a:ln></c:spPr><c:cat><c:strRef><c:f>ChartData!$A$2:$A$)",
      lastRow, "</c:f><c:strCache>");
  appendPoints(xml, texts.categories);
  OOXML::append(xml, "</c:strCache></c:strRef></c:cat><c:val><c:numRef><c:f>ChartData!$B$2:$B$", lastRow,
                "</c:f><c:numCache><c:formatCode>", texts.formatCode, "</c:formatCode>");
  appendPoints(xml, texts.values);
  OOXML::append(
      xml,
      R"(</c:numCache></c:numRef></c:val></c:ser><c:gapWidth val="80"/><c:axId val="100"/><c:axId val="200"/>)"
      R"(</c:barChart><c:catAx><c:axId val="100"/><c:scaling><c:orientation val="minMax"/></c:scaling>)"
      R"(<c:delete val="0"/><c:axPos val="b"/><c:tickLblPos val="nextTo"/><c:crossAx val="200"/>)"
      R"(<c:crosses val="autoZero"/><c:auto val="1"/><c:lblAlgn val="ctr"/><c:lblOffset val="100"/></c:catAx>)"
      R"(<c:valAx><c:axId val="200"/><c:scaling><c:orientation val="minMax"/></c:scaling><c:delete val="0"/>)"
      R"(<c:axPos val="l"/><c:majorGridlines/><c:numFmt formatCode=")",
      texts.formatCode,
      R"(" sourceLinked="0"/><c:tickLblPos val="nextTo"/><c:crossAx val="100"/><c:crosses val="autoZero"/>)"
      R"(<c:crossBetween val="between"/></c:valAx></c:plotArea><c:plotVisOnly val="1"/>)"
      R"(<c:dispBlanksAs val="gap"/><c:showDLblsOverMax val="0"/></c:chart><c:externalData r:id="rId1">)"
      R"(<c:autoUpdate val="0"/></c:externalData></c:chartSpace>)");
  return xml;
}

ByteBuffer DocumentAuthor::chartWorkbook(const SourceTable& table, const ChartSelection& chart,
                                         const std::stop_token& stop) {
  WorkbookPlan plan;
  plan.sheets.push_back({.name = "ChartData", .xml = sheetXML(textsOf(table, chart)), .relationships = {}});
  return BoundedZIP::write(workbookPackage(plan), stop);
}

}  // namespace zelvo
