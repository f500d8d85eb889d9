#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

#include <string>
#include <utility>

#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Cell = ResearchSpreadsheet::Cell;
using Kind = ResearchSheet::Kind;
using Row = ResearchSheet::Row;
using Record = ResearchSourceScope::Record;

Row textRow(std::initializer_list<std::string_view> texts) {
  Row row;
  for (const std::string_view text : texts)
    row.emplace_back(std::string(text));
  return row;
}

ResearchSheet overviewSheet(std::string_view title) {
  return {Kind::overview,
          "Overview",
          {textRow({title}), textRow({"Data and sources are in the following sheets."})}};
}

ResearchSheet dataSheet(const ResearchSpreadsheet& content, const std::vector<Row>& cells) {
  ResearchSheet sheet{Kind::data, "Data", {}};
  Row& headings = sheet.rows.emplace_back();
  for (const auto& column : content.columns)
    headings.emplace_back(column.headerLabel());
  headings.emplace_back("Sources");
  for (std::size_t i = 0; i < cells.size(); ++i) {
    Row& row = sheet.rows.emplace_back(cells[i]);
    row.emplace_back(content.rows[i].provenanceText());
  }
  return sheet;
}

ResearchSheet reportSheet(std::string_view title, const ResearchSpreadsheet& content) {
  ResearchSheet sheet{Kind::report, "Report", {textRow({title})}};
  for (const std::string_view line : Unicode::lines(content.report))
    sheet.rows.push_back(textRow({line}));
  if (!content.calculationList().empty()) {
    sheet.rows.push_back(
        textRow({"Formula caches were calculated locally from the frozen dataset. Excel recalculates after "
                 "inputs change. Missing inputs and division by zero remain blank."}));
  }
  return sheet;
}

ResearchSheet urlSheet(std::vector<std::string> urls) {
  ResearchSheet sheet{Kind::sources, "Sources", {textRow({"Source URL"})}};
  for (const std::string& url : SourceReferences::distinctSorted(std::move(urls)))
    sheet.rows.push_back(textRow({url}));
  return sheet;
}

/// The URL with its permitted use: that of a local excerpt must not be fetched.
std::string urlText(const Record& record) {
  if (!record.provenanceURL) return "No URL";
  if (record.kind != Record::Kind::localSnapshot) return *record.provenanceURL;
  return "Provenance only; no fetch permission: " + *record.provenanceURL;
}

ResearchSheet recordSheet(std::vector<Record> records) {
  ResearchSheet sheet{
      Kind::sources,
      "Sources",
      {textRow({"Source ID", "Kind", "Source", "Observed UTC", "Coverage", "URL / local provenance only"})}};
  for (Record& record : records) {
    Row& row = sheet.rows.emplace_back();
    row.emplace_back(std::move(record.id));
    row.emplace_back(std::string(record.kindLabel()));
    row.emplace_back(std::move(record.label));
    row.emplace_back(record.observedUTC());
    row.emplace_back(std::move(record.coverage));
    row.emplace_back(urlText(record));
  }
  return sheet;
}

/// Every URL that a row cites, and every identifier, in the rows' order.
std::vector<std::string> citedURLs(const ResearchSpreadsheet& content) {
  std::vector<std::string> urls;
  for (const auto& row : content.rows)
    urls.insert(urls.end(), row.sources.begin(), row.sources.end());
  return urls;
}
std::vector<std::string> citedIDs(const ResearchSpreadsheet& content) {
  std::vector<std::string> ids;
  for (const auto& row : content.rows) {
    if (row.sourceIDs) ids.insert(ids.end(), row.sourceIDs->begin(), row.sourceIDs->end());
  }
  return ids;
}

ResearchSheet sourcesSheet(const ResearchSpreadsheet& content, const AllowedSources& sources,
                           const std::optional<ResearchSourceScope>& sourceScope) {
  std::vector<std::string> urls = citedURLs(content);
  if (sourceScope) return recordSheet(sourceScope->selectedRecords(citedIDs(content), urls));
  if (sources) urls.insert(urls.end(), sources->begin(), sources->end());
  return urlSheet(std::move(urls));
}

CalculationMap byAddress(std::vector<ResolvedCalculation> calculations) {
  CalculationMap map;
  for (ResolvedCalculation& calculation : calculations) {
    const CellAddress address = sheetAddress(calculation.row, calculation.column);
    map.emplace(address, std::move(calculation));
  }
  return map;
}

}  // namespace

ResearchWorkbookContent ResearchWorkbookContent::of(std::string_view title,
                                                    const ResearchSpreadsheet& dataset,
                                                    const AllowedSources& sources,
                                                    const std::optional<ResearchSourceScope>& sourceScope) {
  std::vector<ResolvedCalculation> resolved = ResearchFormulaEvaluator::resolve(dataset);
  ResearchWorkbookContent content{.dataset = &dataset,
                                  .cells = ResearchFormulaEvaluator::cellsWith(dataset, resolved),
                                  .calculations = byAddress(std::move(resolved)),
                                  .sheets = {},
                                  .hasScope = sourceScope.has_value()};
  if (!dataset.charts.empty()) content.sheets.push_back(overviewSheet(title));
  content.sheets.push_back(dataSheet(dataset, content.cells));
  content.sheets.push_back(reportSheet(title, dataset));
  content.sheets.push_back(sourcesSheet(dataset, sources, sourceScope));
  return content;
}

}  // namespace zelvo
