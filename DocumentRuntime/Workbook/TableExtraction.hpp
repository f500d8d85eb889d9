#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <stop_token>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Workbook/CellReader.hpp"
#include "DocumentRuntime/Workbook/WorksheetContents.hpp"

namespace zelvo::Refusal {

/// Details of errors that hosts compare.
inline constexpr const char* selectionTooLarge = "select at most eight columns and 200 data rows";
inline constexpr const char* mergedCells = "merged cells in the selected table";
inline constexpr const char* hiddenColumns = "the selection includes hidden columns";
inline constexpr const char* noVisibleRows = "no visible rows";
inline constexpr const char* hiddenHeader = "header row is hidden";
inline constexpr const char* header = "headers must be nonempty and at most 120 characters";
inline constexpr const char* noDataRows = "no data rows";

}  // namespace zelvo::Refusal

/// Extracts one range from one worksheet.
namespace zelvo::TableExtraction {

inline constexpr std::int64_t maximumColumns = 8;
/// With or without a header: a table without one may have 201 data rows.
inline constexpr std::int64_t maximumRows = 201;
inline constexpr std::size_t maximumHeaderCharacters = 120;

/// Parses the selection's range and checks its size. Throws the errors of `CellRange::parse`, and
/// `DocumentError` resourceLimit `Refusal::selectionTooLarge`.
CellRange selectedRange(const TableSelection& selection);

/// Reads columns, rows and warnings of `range`, which is within the area of `contents`, into a table; the
/// caller adds source, sheet and range. An address in `acceptedEmptyFormulaCells` may hold a formula with an
/// empty stored result. Throws `DocumentError`, in this order of checks: unsupported "merged cells in the
/// selected table"; invalidSelection "the selection includes hidden columns"; the errors of
/// `CellReader::cell` for the first cell that fails, row by row, left to right, or `ResponseTooLarge` at the
/// cell at which the texts exceed 40 MiB; invalidSelection "no visible rows", "header row is hidden",
/// "headers must be nonempty and at most 120 characters" or "no data rows". Throws `Cancelled` (checked once
/// per row).
SourceTable read(const WorksheetContents& contents, const CellRange& range, const TableSelection& selection,
                 const CellReader& reader, const std::set<CellAddress>& acceptedEmptyFormulaCells,
                 const std::stop_token& stop);

}  // namespace zelvo::TableExtraction
