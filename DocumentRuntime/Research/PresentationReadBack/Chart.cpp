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

/// Checks a reference to one column below its heading, and a cache of exactly its cells.
void checkCache(XMLNode parent, const char* cacheName, char letter, const ChartColumn& column,
                PointText textOf) {
  const std::string reference =
      std::string("'Data'!$") + letter + "$2:$" + letter + "$" + std::to_string(column.cells.size() + 1);
  require(only(parent.descendants("f")).content() == reference);
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

void checkCaches(XMLNode chartSpace, const Binding& binding, const std::vector<ChartColumn>& columns) {
  const bool bar = binding.chart().kind == ResearchSpreadsheet::Chart::Kind::bar;
  const XMLNode plot = only(chartSpace.descendants(bar ? "barChart" : "lineChart"));
  require(holds(only(chartSpace.descendants("title")).content(), binding.chart().title));
  const XMLElements series = plot.all("ser");
  require(series.size() == columns.size() - 1 && chartSpace.descendants("ser").size() == series.size());
  char letter = 'A';
  for (const XMLNode one : series) {
    const ChartColumn& column = columns[static_cast<std::size_t>(++letter - 'A')];
    require(holds(only(one.all("tx")).content(), column.name));
    checkCache(only(one.all("cat")), "strCache", 'A', columns.front(), categoryText);
    checkCache(only(one.all("val")), "numCache", letter, column, valueText);
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
  checkCaches(chartSpace, binding, columns);
  checkWorkbook(workbook, columns, stop);
}

}  // namespace zelvo
