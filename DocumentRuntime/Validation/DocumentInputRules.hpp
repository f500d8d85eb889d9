#pragma once

#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* tableBounds = "table, title, or source bounds";
inline constexpr const char* chartShape = "chart needs two different columns and at most 30 rows";
inline constexpr const char* chartValues =
    "chart categories and numeric values must be present; missing values are not zero";
inline constexpr const char* chartUnits = "chart values have mixed formats or units";

}  // namespace zelvo::RefusalDetail

/// The rules for a table, a title and a chart before a document is written. Lengths are in user-perceived
/// characters.
namespace zelvo::DocumentInputRules {

/// Throws `DocumentError`, in this order: invalidSelection "table, title, or source bounds"; the errors of
/// the selected range; then for each cell, row by row, the errors of its address, invalidSelection "cell
/// lineage or bounds" or "numeric value or unsupported format", or formulaValueUnavailable with the address.
void checkTable(const SourceTable& table, std::string_view title);

/// Takes any table, also a ragged or empty one. Throws `DocumentError` invalidSelection: "chart needs two
/// different columns and at most 30 rows"; "chart categories and numeric values must be present; missing
/// values are not zero"; "chart values have mixed formats or units".
void checkChart(const ChartSelection& selection, const SourceTable& table);

}  // namespace zelvo::DocumentInputRules
