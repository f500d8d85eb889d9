#include "DocumentRuntime/Research/Charts/ChartWorkbook.hpp"

#include <cstddef>
#include <string>
#include <vector>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"

namespace zelvo {
namespace {

using Cell = ResearchSpreadsheet::Cell;
using Cells = std::vector<std::vector<Cell>>;
using Chart = ResearchSpreadsheet::Chart;

/// The dataset's columns in the order of the sheet's.
std::vector<std::size_t> columnsOf(const Chart& chart) {
  std::vector<std::size_t> columns = {static_cast<std::size_t>(chart.categoryColumn)};
  for (const std::int64_t column : chart.valueColumns)
    columns.push_back(static_cast<std::size_t>(column));
  return columns;
}

void appendCell(std::string& xml, const CellAddress& address, const Cell& cell) {
  const std::string text = cell.displayText();
  if (cell.number()) {
    DocumentAuthor::appendValueCell(xml, address, "", text);
  } else if (cell.text()) {
    DocumentAuthor::appendTextCell(xml, address, "", OOXML::escaped(ResearchChartAuthor::cleaned(text)));
  }
}

void appendRow(std::string& xml, std::int64_t row, const std::vector<Cell>& cells) {
  OOXML::append(xml, R"(<row r=")", row, R"(">)");
  for (std::size_t i = 0; i < cells.size(); ++i)
    appendCell(xml, {.column = static_cast<std::int64_t>(i) + 1, .row = row}, cells[i]);
  xml += "</row>";
}

std::string sheetXML(const ResearchSpreadsheet& content, const Cells& table, const Chart& chart) {
  const auto columns = columnsOf(chart);
  std::string xml;
  OOXML::append(xml, R"(<worksheet xmlns=")", DocumentAuthor::spreadsheetNamespace, R"("><sheetData>)");
  std::vector<Cell> cells;
  cells.reserve(columns.size());
  for (const std::size_t column : columns)
    cells.emplace_back(ResearchChartAuthor::seriesName(content.columns[column]));
  appendRow(xml, 1, cells);
  std::int64_t number = 1;
  for (const auto& row : table) {
    cells.clear();
    for (const std::size_t column : columns)
      cells.push_back(row[column]);
    appendRow(xml, ++number, cells);
  }
  xml += "</sheetData></worksheet>";
  return xml;
}

}  // namespace

ByteBuffer ResearchChartWorkbook::write(const ResearchSpreadsheet& content, const Cells& cells,
                                        const Chart& chart, const std::stop_token& stop) {
  DocumentAuthor::WorkbookPlan plan;
  plan.sheets.push_back({.name = "Data", .xml = sheetXML(content, cells, chart), .relationships = {}});
  return BoundedZIP::write(DocumentAuthor::workbookPackage(plan), stop);
}

}  // namespace zelvo
