#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* noReportTable =
    "The saved report has no table. Continue the task to prepare spreadsheet data.";

}  // namespace zelvo::RefusalDetail

namespace zelvo::ResearchWorkbook {

/// Rows of texts, all of the same length.
using ReportTable = std::vector<std::vector<std::string>>;

/// The first table of a Markdown report: of all delimited blocks in code fences, or else of all pipe tables,
/// the first that has 2 to 501 rows of 2 to 24 cells of at most 2,000 characters.
std::optional<ReportTable> firstTable(std::string_view text);
bool hasTable(std::string_view text);

/// A workbook of a report without a dataset: its first table, its text and its sources, without styles or
/// formulas. It is not read back.
///
/// Throws `DocumentError` resourceLimit "research report"; validationFailed "The saved report has no table.
/// Continue the task to prepare spreadsheet data."; resourceLimit for more lines than a sheet can hold; and
/// what the ZIP writer throws. Throws `Cancelled`.
ByteBuffer make(std::string_view title, std::string_view report, const std::vector<std::string>& sources,
                const std::stop_token& stop = {});

}  // namespace zelvo::ResearchWorkbook
