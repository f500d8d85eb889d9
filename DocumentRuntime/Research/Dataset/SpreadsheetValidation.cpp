// The rules of a dataset, in the order in which they are checked. Those of charts are in ChartRules.cpp.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Rules.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "DocumentRuntime/Research/Provenance/SourceReferences.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using ResearchRule::require;
using Column = ResearchSpreadsheet::Column;
using Cell = ResearchSpreadsheet::Cell;
using Row = ResearchSpreadsheet::Row;

// Lengths are in characters.
constexpr std::size_t maximumReportLength = 60'000;
constexpr std::size_t minimumColumns = 2;
constexpr std::size_t maximumHeaderLength = 120;
constexpr std::size_t maximumTextLength = 2000;

/// The heading that every authored workbook adds.
constexpr std::string_view sourcesHeading = "sources";

bool hasGoodHeadings(const std::vector<Column>& columns) {
  std::vector<std::string> folded;
  folded.reserve(columns.size());
  for (const Column& column : columns)
    folded.push_back(Unicode::lowercased(column.headerLabel()));
  std::sort(folded.begin(), folded.end());
  if (std::adjacent_find(folded.begin(), folded.end()) != folded.end()) return false;
  return std::ranges::all_of(columns, [](const Column& column) {
    const std::string label = column.headerLabel();
    return !column.name.empty() && !Unicode::exceeds(label, maximumHeaderLength) &&
           Unicode::lowercased(label) != sourcesHeading;
  });
}

bool isBoundedTable(const ResearchSpreadsheet& dataset) {
  return !Unicode::trimmed(dataset.report).empty() &&
         !Unicode::exceeds(dataset.report, maximumReportLength) && dataset.columns.size() >= minimumColumns &&
         dataset.columns.size() <= ResearchSpreadsheet::maximumColumns && !dataset.rows.empty() &&
         dataset.rows.size() <= ResearchSpreadsheet::maximumRows &&
         dataset.charts.size() <= ResearchSpreadsheet::maximumCharts && hasGoodHeadings(dataset.columns);
}

bool isAllowedText(const std::string& text, Column::Kind kind) {
  const bool isInItsColumn =
      kind == Column::Kind::text || (kind == Column::Kind::date && ResearchSpreadsheet::validDate(text));
  return isInItsColumn && !Unicode::exceeds(text, maximumTextLength);
}

bool isAllowedNumber(double number, Column::Kind kind) {
  return kind == Column::Kind::number && std::isfinite(number) &&
         std::fabs(number) < ResearchSpreadsheet::numberBound;
}

void checkCell(const Cell& cell, Column::Kind kind) {
  if (const std::string* text = cell.text()) {
    require(isAllowedText(*text, kind), "Use null for missing numbers; units belong in column headings.");
  } else if (const double* number = cell.number()) {
    require(isAllowedNumber(*number, kind), "Numeric cells must contain finite JSON numbers.");
  }
}

/// The rules of one row. The list and the scope must outlive it.
class RowRules {
 public:
  RowRules(const std::vector<Column>& columns, const AllowedSources& allowedSources,
           const std::optional<ResearchSourceScope>& scope)
      : columns_(columns), hasList_(allowedSources.has_value()), scope_(scope) {
    if (allowedSources) allowed_ = *allowedSources;
    std::sort(allowed_.begin(), allowed_.end());
  }

  void check(const Row& row) const {
    require(matchesColumns(row), "Every row must match the columns.");
    for (std::size_t i = 0; i < row.cells.size(); ++i)
      checkCell(row.cells[i], columns_[i].kind);
    if (scope_) {
      scope_->validate(row.sourceIDs, row.sources, /*requiresEvidence=*/true);
    } else if (hasList_) {
      require(citesAllowedSources(row), RefusalDetail::rowSources);
    }
    require(std::ranges::all_of(row.sources, SourceReferences::isWebURL), "Invalid source URL.");
  }

 private:
  bool matchesColumns(const Row& row) const {
    return row.cells.size() == columns_.size() && row.sources.size() <= SourceReferences::maximumPerRow &&
           (!row.sourceIDs || (row.sourceIDs->size() <= SourceReferences::maximumPerRow &&
                               std::ranges::all_of(*row.sourceIDs, SourceReferences::isIdentifier)));
  }

  bool citesAllowedSources(const Row& row) const {
    const bool citesIdentifiers = row.sourceIDs && !row.sourceIDs->empty();
    const bool lacksSource = !allowed_.empty() && row.sources.empty();
    return !citesIdentifiers && !lacksSource &&
           std::ranges::all_of(row.sources, [this](const std::string& source) {
             return std::binary_search(allowed_.begin(), allowed_.end(), source);
           });
  }

  const std::vector<Column>& columns_;
  bool hasList_;
  std::vector<std::string> allowed_;
  const std::optional<ResearchSourceScope>& scope_;
};

}  // namespace

void ResearchSpreadsheet::validate(bool requiresChart, const AllowedSources& allowedSources,
                                   const std::optional<ResearchSourceScope>& sourceScope) const {
  require(isBoundedTable(*this), "Supply a report and a bounded table with unique column names.");
  const RowRules rules(columns, allowedSources, sourceScope);
  for (const Row& row : rows)
    rules.check(row);
  // A calculated value counts as an observed number in a chart.
  const auto cells = resolvedCells();
  require(!charts.empty() || !requiresChart, RefusalDetail::noChart);
  for (const Chart& chart : charts)
    ResearchChartRules::check(chart, columns, cells);
}

}  // namespace zelvo
