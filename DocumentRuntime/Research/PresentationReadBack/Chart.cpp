#include "DocumentRuntime/Research/PresentationReadBack/Chart.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/PresentationReadBack/Texts.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;
using Cell = ResearchSpreadsheet::Cell;
using Kind = SourceCellValue::Kind;

void require(bool condition) {
  if (!condition) throw DocumentError::validationFailed("Slide chart data did not survive delivery.");
}

bool holds(std::string_view found, std::string_view expected) {
  return found == ReadBackTexts::inChart(expected);
}

/// One column of the chart's data: its name and its cells.
struct ChartColumn {
  std::string name;
  std::vector<Cell> cells;
};

ChartColumn columnOf(const Binding& binding, std::int64_t index) {
  const auto column = static_cast<std::size_t>(index);
  ChartColumn data{.name = ReadBackTexts::seriesName(binding.dataset->columns[column]), .cells = {}};
  for (const auto& row : *binding.cells)
    data.cells.push_back(row[column]);
  return data;
}

/// The category first, then the series: also the order of the sheet's columns.
std::vector<ChartColumn> columnsOf(const Binding& binding) {
  std::vector<ChartColumn> columns = {columnOf(binding, binding.chart().categoryColumn)};
  for (const std::int64_t column : binding.chart().valueColumns)
    columns.push_back(columnOf(binding, column));
  return columns;
}

XMLNode only(const XMLElements& elements) {
  const auto element = elements.only();
  require(element.has_value());
  return *element;
}

/// The text of a cell's point in a cache; nullopt for a gap.
using PointText = std::optional<std::string> (*)(const Cell& cell);

std::optional<std::string> categoryText(const Cell& cell) {
  return cell.displayText();
}
std::optional<std::string> valueText(const Cell& cell) {
  if (!cell.number()) return std::nullopt;
  return cell.displayText();
}

/// Checks a reference to cells of the sheet.
void checkReference(XMLNode parent, const std::string& cells) {
  require(only(parent.descendants("f")).content() == "'Data'!" + cells);
}

/// Checks a reference to one column below its heading, and a cache of exactly its cells.
void checkCache(XMLNode parent, const char* cacheName, char letter, const ChartColumn& column,
                PointText textOf) {
  const std::string start = std::string("$") + letter + "$";
  checkReference(parent, start + "2:" + start + std::to_string(column.cells.size() + 1));
  const XMLNode cache = only(parent.descendants(cacheName));
  require(only(cache.all("ptCount")).attribute("val") == std::to_string(column.cells.size()));
  const XMLElements found = cache.all("pt");
  auto point = found.begin();
  for (std::size_t i = 0; i < column.cells.size(); ++i) {
    const auto expected = textOf(column.cells[i]);
    if (!expected) continue;
    require(point != found.end() && (*point).attribute("idx") == std::to_string(i) &&
            holds(only((*point).all("v")).content(), *expected));
    ++point;
  }
  require(point == found.end());
}

/// The `val` of an element's only child of that name. Returns nullopt if there is not exactly one.
std::optional<std::string_view> valueOf(XMLNode parent, std::string_view name) {
  const auto child = parent.all(name).only();
  return child ? child->attribute("val") : std::nullopt;
}

/// Checks the name, which refers to the column's heading, and the points.
void checkSeries(XMLNode series, char letter, const ChartColumn& column, const ChartColumn& categories) {
  const XMLNode name = only(series.all("tx"));
  checkReference(name, std::string("$") + letter + "$1");
  require(holds(only(name.descendants("v")).content(), column.name));
  checkCache(only(series.all("cat")), "strCache", 'A', categories, categoryText);
  checkCache(only(series.all("val")), "numCache", letter, column, valueText);
}

/// The paragraphs of an element's title; empty without one.
std::vector<std::string> titleOf(XMLNode titled) {
  std::vector<std::string> paragraphs;
  if (titled.all("title").empty()) return paragraphs;
  for (const XMLNode paragraph : only(titled.all("title")).descendants("p"))
    paragraphs.push_back(paragraph.content());
  return paragraphs;
}

bool isTitled(XMLNode titled, const std::vector<std::string>& expected) {
  std::vector<std::string> wanted;
  for (const std::string& text : expected) {
    if (std::string kept = ReadBackTexts::inChart(text); !kept.empty()) wanted.push_back(std::move(kept));
  }
  return titleOf(titled) == wanted;
}

/// The unit of the series, which a chart's rules demand to be the same.
std::string unitOf(const Binding& binding) {
  const auto first = static_cast<std::size_t>(binding.chart().valueColumns.front());
  return binding.dataset->columns[first].unit.value_or("");
}

/// The value axis names the unit. The only series is named there with its unit, or below the chart's title.
void checkTitles(XMLNode chart, XMLNode values, const Binding& binding,
                 const std::vector<ChartColumn>& columns) {
  const std::string& title = binding.chart().title;
  const std::string& series = columns[1].name;
  const bool isSingle = columns.size() == 2;
  if (isSingle && isTitled(chart, {title}) && isTitled(values, {series})) return;
  require(isTitled(chart, isSingle ? std::vector{title, series} : std::vector{title}) &&
          isTitled(values, {unitOf(binding)}));
}

/// A bar's length is its value only if the axis begins at zero, and an end that is fixed elsewhere could cut
/// values off.
void checkScaling(XMLNode axis, const std::vector<ChartColumn>& columns, bool bar) {
  bool above = false;
  bool below = false;
  for (auto column = columns.begin() + 1; column != columns.end(); ++column) {
    for (const Cell& cell : column->cells) {
      above = above || (cell.number() != nullptr && *cell.number() > 0);
      below = below || (cell.number() != nullptr && *cell.number() < 0);
    }
  }
  const XMLNode scaling = only(axis.all("scaling"));
  const auto isFixed = [&](const char* end, bool expected) {
    return expected ? valueOf(scaling, end) == "0" : scaling.all(end).empty();
  };
  require(isFixed("min", bar && !below) && isFixed("max", bar && below && !above));
}

/// Checks that both axes are drawn and named, and that nothing is drawn for a missing value.
void checkAxes(XMLNode chart, const Binding& binding, const std::vector<ChartColumn>& columns, bool bar) {
  const XMLNode area = only(chart.all("plotArea"));
  const XMLNode categories = only(area.all("catAx"));
  const XMLNode values = only(area.all("valAx"));
  require(valueOf(categories, "delete") == "0" && valueOf(values, "delete") == "0");
  require(isTitled(categories, {}));
  checkTitles(chart, values, binding, columns);
  checkScaling(values, columns, bar);
  require(valueOf(chart, "dispBlanksAs") == "gap");
}

/// Lines run straight from point to point: a curve would show values that were not observed.
bool isStraight(XMLNode series) {
  return valueOf(series, "smooth") == "0";
}

void checkDrawing(XMLNode chartSpace, const Binding& binding, const std::vector<ChartColumn>& columns) {
  const bool bar = binding.chart().kind == ResearchSpreadsheet::Chart::Kind::bar;
  const XMLNode chart = only(chartSpace.all("chart"));
  const XMLNode plot = only(only(chart.all("plotArea")).all(bar ? "barChart" : "lineChart"));
  checkAxes(chart, binding, columns, bar);
  const XMLElements series = plot.all("ser");
  require(series.size() == columns.size() - 1 && chartSpace.descendants("ser").size() == series.size());
  // A legend names the series where there are several.
  require(chart.all("legend").empty() == (series.size() == 1));
  char letter = 'A';
  for (const XMLNode one : series) {
    const ChartColumn& column = columns[static_cast<std::size_t>(++letter - 'A')];
    checkSeries(one, letter, column, columns.front());
    require(bar || isStraight(one));
  }
}

void checkCell(const SourceCell& found, const Cell& expected) {
  const Kind kind = expected.number() ? Kind::number : expected.text() ? Kind::text : Kind::missing;
  require(!found.formula && found.value.kind() == kind &&
          holds(found.value.payload(), expected.displayText()));
}

/// Checks that the sheet has the chart's columns and nothing else: no other data may be embedded.
void checkWorkbook(const ByteBuffer& workbook, const std::vector<ChartColumn>& columns,
                   const std::stop_token& stop) {
  const WorkbookReader reader(workbook.view(), "chart-data.xlsx", stop);
  const CellRange range{.first = {},
                        .last = {.column = static_cast<std::int64_t>(columns.size()),
                                 .row = static_cast<std::int64_t>(columns.front().cells.size()) + 1}};
  const auto sheets = reader.inspection().sheets;
  require(sheets.size() == 1 && sheets.front().name == "Data" && sheets.front().populatedRange);
  const CellRange populated = CellRange::parse(*sheets.front().populatedRange);
  require(range.contains(populated.first) && range.contains(populated.last));

  const SourceTable table = reader.table({.sheetName = "Data",
                                          .range = range.name(),
                                          .firstRowIsHeader = false,
                                          .includeHiddenRows = true,
                                          .allowCachedFormulaValues = false},
                                         {}, stop);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    checkCell(table.rows.front()[i], Cell(columns[i].name));
    for (std::size_t row = 0; row < columns[i].cells.size(); ++row)
      checkCell(table.rows[row + 1][i], columns[i].cells[row]);
  }
}

}  // namespace

void readBackSlideChart(XMLNode chartSpace, const ByteBuffer& workbook, const Binding& binding,
                        const std::stop_token& stop) {
  const std::vector<ChartColumn> columns = columnsOf(binding);
  checkDrawing(chartSpace, binding, columns);
  checkWorkbook(workbook, columns, stop);
}

}  // namespace zelvo
