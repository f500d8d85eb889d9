#include "DocumentRuntime/Research/PresentationModel/HostDatasets.hpp"

#include <cstddef>
#include <cstdint>
#include <set>
#include <utility>

#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/Provenance/HostFileLimits.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"

namespace zelvo {
namespace {

using HostFileLimits::checkText;

void checkColumns(JsonValue columns) {
  for (const JsonValue column : HostFileLimits::array(columns, ResearchSpreadsheet::maximumColumns)) {
    checkText(column.object().required("name"));
    if (const auto unit = column.object().optional("unit")) checkText(*unit);
  }
}

/// Returns the category columns of the charts.
std::set<std::int64_t> checkCharts(JsonValue charts) {
  std::set<std::int64_t> labelColumns;
  for (const JsonValue chart : HostFileLimits::array(charts, ResearchSpreadsheet::maximumCharts)) {
    checkText(chart.object().required("title"));
    HostFileLimits::array(chart.object().required("valueColumns"), ResearchSpreadsheet::Chart::maximumSeries);
    labelColumns.insert(chart.object().required("categoryColumn").integer());
  }
  return labelColumns;
}

void checkRow(JsonObject row, const std::set<std::int64_t>& labelColumns) {
  std::int64_t column = 0;
  for (const JsonValue cell :
       HostFileLimits::array(row.required("cells"), ResearchSpreadsheet::maximumColumns)) {
    if (cell.kind() == JsonKind::string && labelColumns.contains(column)) checkText(cell);
    ++column;
  }
  HostFileLimits::array(row.required("sources"), SourceReferences::maximumPerRow);
  if (const auto ids = row.optional("sourceIDs"))
    HostFileLimits::array(*ids, SourceReferences::maximumPerRow);
}

/// Adds a formula's nodes to `count`. The recursion is as deep as the JSON, which is bounded.
void countNodes(JsonValue formula, std::size_t& count) {
  if (++count > ResearchFormulaEvaluator::maximumNodes) formula.fail("The formulas have too many nodes.");
  const auto arguments = formula.object().optional("arguments");
  if (!arguments) return;
  for (const JsonValue argument : arguments->array())
    countNodes(argument, count);
}

void checkCalculations(JsonValue calculations) {
  std::size_t nodes = 0;
  for (const JsonValue calculation :
       HostFileLimits::array(calculations, ResearchFormulaEvaluator::maximumCalculations))
    countNodes(calculation.object().required("formula"), nodes);
}

void checkDataset(JsonObject dataset) {
  checkColumns(dataset.required("columns"));
  const auto labelColumns = checkCharts(dataset.required("charts"));
  for (const JsonValue row :
       HostFileLimits::array(dataset.required("rows"), ResearchSpreadsheet::maximumRows))
    checkRow(row.object(), labelColumns);
  if (const auto calculations = dataset.optional("calculations")) checkCalculations(*calculations);
}

}  // namespace

ResearchSpreadsheet hostDatasetFromJson(std::string text) {
  const JsonDocument document(std::move(text));
  checkDataset(document.root().object());
  ResearchSpreadsheet dataset;
  decode(document.root(), dataset);
  return dataset;
}

std::vector<ResearchPresentation::Dataset> hostDatasetsFromJson(std::string text) {
  const JsonDocument document(std::move(text));
  for (const JsonValue dataset :
       HostFileLimits::array(document.root(), ResearchPresentation::maximumDatasets))
    checkDataset(dataset.object().required("content").object());
  std::vector<ResearchPresentation::Dataset> datasets;
  decode(document.root(), datasets);
  return datasets;
}

}  // namespace zelvo
