#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

namespace zelvo {

/// Numbers of rows or columns from `first` to `last`, both included.
struct NumberSpan {
  std::int64_t first = 0;
  std::int64_t last = 0;

  bool operator==(const NumberSpan&) const = default;
};

/// Ascending spans that neither overlap nor touch.
using NumberSpans = std::vector<NumberSpan>;

/// Appends the numbers from `first` to `last`, which are above all others, or touch or overlap the last span.
void append(NumberSpans& spans, std::int64_t first, std::int64_t last);

/// The count of all numbers in the spans.
std::int64_t countOf(const NumberSpans& spans);

/// The numbers from `first` to `last` that are in none of the spans.
std::vector<std::int64_t> numbersWithout(const NumberSpans& spans, std::int64_t first, std::int64_t last);

/// The rows of a range of one sheet as they are, without hidden rows and columns.
struct SheetRows {
  struct Row {
    std::int64_t number;            ///< in the sheet
    std::vector<SourceCell> cells;  ///< one for each of `columns`
  };

  std::string sheetName;
  std::string sourceSHA256;
  CellRange range;
  std::vector<std::int64_t> columns;  ///< their numbers in the sheet
  std::vector<Row> rows;              ///< the last one has content
  bool firstRowIsHeader = false;
  std::vector<std::string> warnings;
  NumberSpans hiddenRows;     ///< of the range, left out
  NumberSpans hiddenColumns;  ///< of the range, left out
};

/// The rows without titles.
std::span<const SheetRows::Row> dataRows(const SheetRows& rows);

/// Whether one of the data rows has a number in the column with this index.
bool hasNumber(const SheetRows& rows, std::size_t column);

/// The rows of a table that was extracted without a header row. `selection` says what was asked for.
SheetRows rowsOf(SourceTable table, const TableSelection& selection);

/// Removes the rows after the last one with content.
void removeTrailingRows(SheetRows& rows);

/// One sentence for the hidden rows and one for the hidden columns that were left out; none if there are
/// none.
std::vector<std::string> leftOut(const SheetRows& rows);

}  // namespace zelvo
