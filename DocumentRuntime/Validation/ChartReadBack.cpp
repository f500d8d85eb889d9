#include "DocumentRuntime/Validation/ChartReadBack.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/XMLContents.hpp"
#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

namespace zelvo {
namespace {

/// The input rules have the same limit. Kept separate on purpose: the document may come from elsewhere.
constexpr std::size_t maximumPoints = 30;
constexpr std::string_view sheetName = "ChartData";

/// The five parts of the embedded workbook, sorted.
constexpr std::array<std::string_view, 5> workbookParts = {
    "[Content_Types].xml",      "_rels/.rels", "xl/_rels/workbook.xml.rels", "xl/workbook.xml",
    "xl/worksheets/sheet1.xml",
};

DocumentError unexpectedShape() {
  return DocumentError::validationFailed("chart data");
}

/// The only element of a range.
XMLNode only(const XMLElements& elements) {
  const auto element = elements.only();
  if (!element) throw unexpectedShape();
  return *element;
}

/// The elements of a chart that hold cached values.
struct ChartCaches {
  XMLNode series;
  XMLNode categories;
  XMLNode values;

  static ChartCaches find(XMLNode chart) {
    if (chart.name() != "chartSpace") throw unexpectedShape();
    const XMLNode series = only(chart.descendants("ser"));
    const ChartCaches caches{
        .series = series,
        .categories = only(only(series.all("cat")).descendants("strCache")),
        .values = only(only(series.all("val")).descendants("numCache")),
    };
    // Only the name of the series may have another cache: its data would not be compared.
    if (chart.descendants("strCache").size() > 2 || chart.descendants("numCache").size() != 1)
      throw unexpectedShape();
    return caches;
  }
};

/// The texts of a cache's points. Skips points without a value, and uses the first of several values. Stops
/// at the first point above the limit, because the chart is then refused.
std::vector<std::string_view> pointTexts(XMLNode cache, const XMLContents& contents) {
  std::vector<std::string_view> texts;
  for (const XMLNode point : cache.all("pt")) {
    if (const auto value = point.child("v")) texts.push_back(contents.of(*value));
    if (texts.size() > maximumPoints) break;
  }
  return texts;
}

/// Whether the cache declares `count` points and has them with the indexes from 0.
bool isIndexed(XMLNode cache, std::size_t count) {
  const auto pointCount = cache.child("ptCount");
  if (!pointCount || pointCount->attribute("val") != std::to_string(count)) return false;
  std::size_t index = 0;
  for (const XMLNode point : cache.all("pt")) {
    if (point.attribute("idx") != std::to_string(index++)) return false;
  }
  return index == count;
}

/// Whether the chart refers to the series' name, `count` categories and `count` values of the embedded sheet,
/// and to nothing else.
bool hasReferences(XMLNode chart, const XMLContents& contents, std::size_t count) {
  const std::string lastRow = std::to_string(count + 1);
  const std::array<std::string, 3> expected = {"ChartData!$B$1", "ChartData!$A$2:$A$" + lastRow,
                                               "ChartData!$B$2:$B$" + lastRow};
  std::size_t index = 0;
  for (const XMLNode reference : chart.descendants("f")) {
    if (index == expected.size() || contents.of(reference) != expected[index]) return false;
    ++index;
  }
  return index == expected.size();
}

void checkWorkbookParts(const ByteBuffer& workbook, const std::stop_token& stop) {
  const GeneratedPackage package(workbook.view(), {}, stop);
  if (!std::ranges::equal(package.parts(), workbookParts, {}, &Part::name)) {
    throw DocumentError::validationFailed("unexpected data in embedded chart workbook");
  }
}

/// The first two columns of the embedded sheet, titles included. Refuses other cells: their data would not be
/// compared.
SourceTable readWorkbook(const ByteBuffer& workbook, std::size_t count, const std::stop_token& stop) {
  const WorkbookReader reader(ByteBuffer::copyOf(workbook.view()), "chart-data.xlsx", stop);
  const CellRange range{.first = {.column = 1, .row = 1},
                        .last = {.column = 2, .row = static_cast<std::int64_t>(count) + 1}};
  const auto sheets = reader.inspection().sheets;
  if (sheets.size() != 1 || sheets.front().name != sheetName) throw unexpectedShape();
  if (const auto& populated = sheets.front().populatedRange) {
    const CellRange cells = CellRange::parse(*populated);
    if (!range.contains(cells.first) || !range.contains(cells.last)) throw unexpectedShape();
  }
  return reader.table({.sheetName = std::string(sheetName),
                       .range = range.name(),
                       .firstRowIsHeader = false,
                       .includeHiddenRows = true,
                       .allowCachedFormulaValues = false},
                      {}, stop);
}

using Kind = SourceCellValue::Kind;

bool matches(const SourceCell& cell, Kind kind, std::string_view text) {
  return cell.value.kind() == kind && cell.value.payload() == text;
}

}  // namespace

void validateChartPackage(const GeneratedPackage& package, const SourceTable* expectedTable,
                          const ChartSelection& expectedChart, const std::stop_token& stop) {
  const ByteBuffer* workbook = package.parts().find(chartWorkbookName);
  if (workbook == nullptr) throw DocumentError::validationFailed("chart workbook");
  checkWorkbookParts(*workbook, stop);

  const auto chartPart = package.parsed(chartPartName);
  const XMLNode chart = chartPart.root();
  const ChartCaches caches = ChartCaches::find(chart);
  const XMLContents contents(chart);
  const std::vector<std::string_view> categories = pointTexts(caches.categories, contents);
  const std::vector<std::string_view> values = pointTexts(caches.values, contents);
  const std::size_t count = values.size();
  if (count < 1 || count > maximumPoints || categories.size() != count ||
      !std::ranges::all_of(values, NumberText::isValid)) {
    throw DocumentError::validationFailed("chart values");
  }
  if (!hasReferences(chart, contents, count) || !isIndexed(caches.categories, count) ||
      !isIndexed(caches.values, count)) {
    throw DocumentError::validationFailed("chart references or cache indexes");
  }

  const SourceTable embedded = readWorkbook(*workbook, count, stop);
  const std::vector<std::string_view> seriesName =
      pointTexts(only(only(caches.series.all("tx")).descendants("strCache")), contents);
  if (seriesName.size() != 1 || !matches(embedded.rows[0][1], Kind::text, seriesName.front()))
    throw unexpectedShape();
  for (std::size_t i = 0; i < count; ++i) {
    const auto& row = embedded.rows[i + 1];
    if (!matches(row[0], Kind::text, categories[i]) || !matches(row[1], Kind::number, values[i])) {
      throw DocumentError::validationFailed("chart cache and embedded data disagree");
    }
  }

  if (expectedTable == nullptr) return;
  DocumentInputRules::checkChart(expectedChart, *expectedTable);
  const auto category = static_cast<std::size_t>(expectedChart.categoryColumn);
  const auto value = static_cast<std::size_t>(expectedChart.valueColumn);
  // The columns' titles are compared with the table that the document shows.
  const auto isApproved = [&](std::size_t i) {
    const auto& row = expectedTable->rows[i];
    return row[category].displayText() == categories[i] && row[value].value.payload() == values[i];
  };
  bool approved = expectedTable->rows.size() == count;
  for (std::size_t i = 0; approved && i < count; ++i)
    approved = isApproved(i);
  if (!approved) throw DocumentError::validationFailed(RefusalDetail::chartDiffers);
}

}  // namespace zelvo
