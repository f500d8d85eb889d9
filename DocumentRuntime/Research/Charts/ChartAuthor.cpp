#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"

#include <cstddef>

#include "DocumentRuntime/Authoring/PresentationFrame.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo {
namespace {

using Cell = ResearchSpreadsheet::Cell;
using Cells = std::vector<std::vector<Cell>>;
using Kind = ResearchSpreadsheet::Chart::Kind;

constexpr unsigned char firstPrintable = 0x20;

constexpr std::string_view categoryAxis =
    R"(<c:catAx><c:axId val="100"/><c:scaling><c:orientation val="minMax"/></c:scaling><c:axPos val="b"/>)"
    R"(<c:tickLblPos val="nextTo"/><c:crossAx val="200"/><c:crosses val="autoZero"/></c:catAx>)";
constexpr std::string_view gridAndLegend =
    R"(<c:axPos val="l"/><c:majorGridlines/><c:numFmt formatCode="#,##0.##" sourceLinked="0"/>)"
    R"(<c:tickLblPos val="nextTo"/><c:crossAx val="100"/><c:crosses val="autoZero"/><c:crossBetween val="between"/>)"
    R"(</c:valAx></c:plotArea><c:legend><c:legendPos val="b"/><c:overlay val="0"/></c:legend>)"
    R"(<c:plotVisOnly val="1"/><c:dispBlanksAs val="gap"/></c:chart>)";

std::string shown(std::string_view text) {
  return OOXML::escaped(ResearchChartAuthor::cleaned(text));
}

/// The cells of one column, below the heading, as a reference.
class ColumnReference {
 public:
  ColumnReference(const std::map<std::int64_t, std::int64_t>& columnMap, std::int64_t column,
                  std::size_t rows)
      : lastRow_(rows + 1) {
    const auto mapped = columnMap.find(column);
    letter_ = ResearchChartAuthor::letter(mapped == columnMap.end() ? column : mapped->second);
  }

  void append(std::string& xml) const {
    const std::string_view letter(&letter_, 1);
    OOXML::append(xml, "<c:f>'Data'!$", letter, "$2:$", letter, "$", lastRow_, "</c:f>");
  }

 private:
  char letter_;
  std::size_t lastRow_;
};

void appendPoint(std::string& xml, std::size_t index, std::string_view text) {
  OOXML::append(xml, R"(<c:pt idx=")", index, R"("><c:v>)", text, "</c:v></c:pt>");
}

/// Every row has a category point, even if it is blank.
std::string categoryXML(const Cells& cells, std::size_t column, const ColumnReference& reference) {
  std::string xml = "<c:cat><c:strRef>";
  reference.append(xml);
  OOXML::append(xml, R"(<c:strCache><c:ptCount val=")", cells.size(), R"("/>)");
  for (std::size_t i = 0; i < cells.size(); ++i)
    appendPoint(xml, i, shown(cells[i][column].displayText()));
  xml += "</c:strCache></c:strRef></c:cat>";
  return xml;
}

/// A missing value has no point: it is shown as a gap, not as zero.
void appendValues(std::string& xml, const Cells& cells, std::size_t column,
                  const ColumnReference& reference) {
  xml += "<c:val><c:numRef>";
  reference.append(xml);
  OOXML::append(xml, R"(<c:numCache><c:formatCode>#,##0.##</c:formatCode><c:ptCount val=")", cells.size(),
                R"("/>)");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (cells[i][column].number()) appendPoint(xml, i, cells[i][column].displayText());
  }
  xml += "</c:numCache></c:numRef></c:val>";
}

/// The element that fixes one end of the axis at zero; empty if there are values on both sides of zero, or no
/// values.
std::string_view baseline(const Cells& cells, const std::vector<std::int64_t>& columns) {
  bool any = false;
  bool negative = false;
  bool positive = false;
  for (const std::int64_t column : columns) {
    for (const auto& row : cells) {
      const double* number = row[static_cast<std::size_t>(column)].number();
      if (!number) continue;
      any = true;
      negative = negative || *number < 0;
      positive = positive || *number > 0;
    }
  }
  if (!any) return {};
  if (!negative) return R"(<c:min val="0"/>)";
  return positive ? std::string_view() : R"(<c:max val="0"/>)";
}

}  // namespace

char ResearchChartAuthor::letter(std::int64_t index) {
  return static_cast<char>('A' + index);
}

std::string ResearchChartAuthor::seriesName(const ResearchSpreadsheet::Column& column) {
  return column.unitText().empty() ? column.name : column.headerLabel();
}

std::string ResearchChartAuthor::cleaned(std::string_view text) {
  std::string kept;
  for (const char character : text) {
    if (static_cast<unsigned char>(character) >= firstPrintable) kept += character;
  }
  return kept;
}

std::string ResearchChartAuthor::xml(const ResearchSpreadsheet& content, const Cells& cells,
                                     const ResearchSpreadsheet::Chart& chart, bool embedded,
                                     const std::map<std::int64_t, std::int64_t>& columnMap,
                                     bool zeroBaseline) {
  const bool bar = chart.kind == Kind::bar;
  const std::string_view element = bar ? "barChart" : "lineChart";
  const ColumnReference categoryReference(columnMap, chart.categoryColumn, cells.size());
  const std::string category =
      categoryXML(cells, static_cast<std::size_t>(chart.categoryColumn), categoryReference);

  std::string xml = R"(<c:chartSpace xmlns:c="http://schemas.openxmlformats.org/drawingml/2006/chart" )"
                    R"(xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main")";
  if (embedded) xml += R"( xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships")";
  OOXML::append(
      xml, R"(><c:chart><c:title><c:tx><c:rich><a:bodyPr/><a:lstStyle/><a:p><a:r><a:rPr lang="en-US"/><a:t>)",
      shown(chart.title),
      R"(</a:t></a:r></a:p></c:rich></c:tx><c:overlay val="0"/></c:title><c:plotArea><c:layout/><c:)",
      element, ">",
      bar ? R"(<c:barDir val="col"/><c:grouping val="clustered"/>)" : R"(<c:grouping val="standard"/>)");
  for (std::size_t k = 0; k < chart.valueColumns.size(); ++k) {
    const auto column = static_cast<std::size_t>(chart.valueColumns[k]);
    OOXML::append(xml, R"(<c:ser><c:idx val=")", k, R"("/><c:order val=")", k, R"("/><c:tx><c:v>)",
                  shown(seriesName(content.columns[column])), "</c:v></c:tx>", category);
    appendValues(xml, cells, column, ColumnReference(columnMap, chart.valueColumns[k], cells.size()));
    xml += "</c:ser>";
  }
  OOXML::append(xml, R"(<c:axId val="100"/><c:axId val="200"/></c:)", element, ">", categoryAxis,
                R"(<c:valAx><c:axId val="200"/><c:scaling><c:orientation val="minMax"/>)",
                bar && zeroBaseline ? baseline(cells, chart.valueColumns) : std::string_view(),
                "</c:scaling>", gridAndLegend);
  if (embedded) xml += R"(<c:externalData r:id="rId1"><c:autoUpdate val="0"/></c:externalData>)";
  xml += "</c:chartSpace>";
  return xml;
}

std::string ResearchChartAuthor::themeXML() {
  return DocumentAuthor::themeXML({.dark = {"202124", "0A2F63"},
                                   .light = {"FFFFFF", "F2F4F7"},
                                   .accents = {"0A2F63", "C4A13E", "23868B", "90373E", "5B6770", "D9DEE4"}});
}

}  // namespace zelvo
