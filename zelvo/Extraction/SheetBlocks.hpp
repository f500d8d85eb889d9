#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "zelvo/Extraction/SheetRows.hpp"
#include "zelvo/Output/Result.hpp"

/// A range of any size as JSON lines, for a confined child that reads it and its parent: first a
/// `SheetOutline`, then for each block of the range that has content {"column": 1, "warnings": [...],
/// "rows": [...]}: the number of its first column, the warnings of its table, and its rows (see `RowCoding`).
namespace zelvo {

/// What a range consists of.
struct SheetOutline {
  std::string sourceSHA256;
  std::string sheetName;
  std::string range;          ///< A1 notation, without trailing rows that have no content
  NumberSpans hiddenRows;     ///< of the range, left out
  NumberSpans hiddenColumns;  ///< of the range, left out
};

template <ConstOrNot<NumberSpan> Record>
void eachField(Record& span, const auto& field) {
  field("first", span.first);
  field("last", span.last);
}

template <ConstOrNot<SheetOutline> Record>
void eachField(Record& outline, const auto& field) {
  field("sourceSHA256", outline.sourceSHA256);
  field("sheetName", outline.sheetName);
  field("range", outline.range);
  field("hiddenRows", outline.hiddenRows);
  field("hiddenColumns", outline.hiddenColumns);
}

namespace SheetBlocks {

/// Cells of a range that is read, empty ones included, without hidden ones. A sheet has at most 50,000 cells
/// in its file, but two cells in opposite corners span 17 billion. Five times the former is enough for sheets
/// of which four in five cells are empty, and at some 200 bytes a cell keeps the tool below 64 MiB.
inline constexpr std::int64_t maximumCells = 250'000;

/// The lines for the selected range; its first row is not treated as a header. Hidden columns, and hidden
/// rows unless they are included, are left out. Cells have no formulas, and number formats only where they
/// change the displayed number.
///
/// With `isIncomplete` the selection is completed first (see `complete`). If its range is then no larger than
/// that of a table, the outline, with the whole of that range, is the only line.
///
/// The error is that of `complete`. Throws `DocumentError`: what opening the workbook and the sheet throws;
/// resourceLimit for more than `maximumCells` cells or 40 MiB of lines; unsupported "merged cells in the
/// selected table at B2". Throws `std::runtime_error` with the message and the address of a cell that
/// `WorkbookReader` refuses.
Result<std::string> linesOf(ByteBuffer workbook, const std::string& sourceName, TableSelection selection,
                            bool isIncomplete);

}  // namespace SheetBlocks

}  // namespace zelvo
