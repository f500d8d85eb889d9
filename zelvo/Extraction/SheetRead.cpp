#include "zelvo/Extraction/SheetRead.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Extraction/RowCoding.hpp"
#include "zelvo/Extraction/SheetBlocks.hpp"

namespace zelvo {
namespace {

/// True if only tables are refused for this: rows can leave out what is hidden, and the child names a merged
/// cell.
bool isRuleOfTables(const CommandError& error) {
  static const std::vector<std::string> messages = {
      DocumentError::unsupported(RefusalDetail::mergedCells).errorDescription(),
      DocumentError::invalidSelection(RefusalDetail::hiddenColumns).errorDescription(),
      DocumentError::invalidSelection(RefusalDetail::noVisibleRows).errorDescription()};
  return error.status == ExitStatus::refused && std::ranges::count(messages, error.message) > 0;
}

/// Takes the first line of a text, without its line feed.
std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

void require(bool condition) {
  if (!condition) throw std::runtime_error("The blocks of the sheet do not fit together.");
}

void requireSpans(const NumberSpans& spans, std::int64_t first, std::int64_t last) {
  for (const NumberSpan& span : spans) {
    require(first <= span.first && span.first <= span.last && span.last <= last);
    first = span.last + 1;
  }
}

/// Whether the range that was read is the one that was asked for, without some of its last rows.
bool isStartOf(const std::string& read, const std::string& requested) {
  const CellRange start = CellRange::parse(read);
  const CellRange whole = CellRange::parse(requested);
  return start.first == whole.first && start.last.column == whole.last.column &&
         start.last.row <= whole.last.row;
}

/// Joins the lines of `SheetBlocks`. The child that wrote them may have been taken over by the document:
/// every count and address is checked. Throws `DecodingError`, `DocumentError` or `std::runtime_error` if
/// they are not such lines.
class Joiner {
 public:
  Joiner(SheetOutline outline, bool firstRowIsHeader) {
    rows_.sheetName = std::move(outline.sheetName);
    rows_.sourceSHA256 = std::move(outline.sourceSHA256);
    rows_.firstRowIsHeader = firstRowIsHeader;
    rows_.range = CellRange::parse(outline.range);
    rows_.hiddenRows = std::move(outline.hiddenRows);
    rows_.hiddenColumns = std::move(outline.hiddenColumns);
    const auto& [first, last] = rows_.range;
    requireSpans(rows_.hiddenRows, first.row, last.row);
    requireSpans(rows_.hiddenColumns, first.column, last.column);
    rows_.columns = numbersWithout(rows_.hiddenColumns, first.column, last.column);
    const auto rowNumbers = numbersWithout(rows_.hiddenRows, first.row, last.row);
    require(std::ssize(rowNumbers) * std::ssize(rows_.columns) <= SheetBlocks::maximumCells);
    rows_.rows.reserve(rowNumbers.size());
    for (const std::int64_t number : rowNumbers)
      rows_.rows.push_back({number, std::vector<SourceCell>(rows_.columns.size())});
  }

  /// Adds the line of a block.
  void add(std::string line) {
    const JsonDocument document(std::move(line));
    const JsonObject block = document.root().object();
    const std::int64_t number = block.required("column").integer();
    const auto column = std::ranges::lower_bound(rows_.columns, number);
    require(column != rows_.columns.end() && *column == number);
    for (const JsonValue row : block.required("rows").array())
      addRow(row.object(), column - rows_.columns.begin());
    std::vector<std::string> warnings;
    decode(block.required("warnings"), bounded(warnings, keptWarnings));
    for (std::string& warning : warnings) {
      if (std::ranges::count(rows_.warnings, warning) == 0) rows_.warnings.push_back(std::move(warning));
    }
    require(rows_.warnings.size() <= keptWarnings);
  }

  SheetRows take() {
    removeTrailingRows(rows_);
    return std::move(rows_);
  }

 private:
  /// `column` is the index of the first one.
  void addRow(const JsonObject& encoded, std::ptrdiff_t column) {
    const std::int64_t number = encoded.required("row").integer();
    const auto row = std::ranges::lower_bound(rows_.rows, number, {}, &SheetRows::Row::number);
    require(row != rows_.rows.end() && row->number == number);
    const auto hidden = encoded.optional("hidden");
    auto target = row->cells.begin() + column;
    for (const JsonValue cell : encoded.required("cells").array()) {
      require(target != row->cells.end());
      target->hidden = hidden && hidden->boolean();
      RowCoding::decode(cell, *target++);
    }
  }

  SheetRows rows_;
};

/// What a child has read: the rows, or that a worker can read them.
using ChildReading = std::optional<SheetRows>;

/// With `isIncomplete` the selection is completed.
ChildReading readingOf(std::string_view lines, TableSelection& selection, bool isIncomplete) {
  auto outline = fromJson<SheetOutline>(std::string(takeLine(lines)));
  require(selection.range.empty() || isStartOf(outline.range, selection.range));
  if (isIncomplete) {
    selection.sheetName = outline.sheetName;
    selection.range = outline.range;
    if (!isLargerThanTables(outline.range) && lines.empty()) return std::nullopt;
  }
  Joiner joiner(std::move(outline), selection.firstRowIsHeader);
  while (!lines.empty())
    joiner.add(std::string(takeLine(lines)));
  return joiner.take();
}

Result<ChildReading> readInChild(DocumentWorkerRequest& request, bool isIncomplete) {
  TableSelection& selection = *request.selection;
  const auto lines = runConfinedChild([&] {
    return SheetBlocks::linesOf(std::move(request.data), request.sourceName, selection, isIncomplete);
  });
  if (!lines) return lines.error();
  try {
    return readingOf(*lines, selection, isIncomplete);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return unreadableResult(error.what());
  }
}

/// For a complete selection.
Result<SheetRows> rowsInChild(DocumentWorkerRequest& request) {
  auto reading = readInChild(request, false);
  if (!reading) return reading.error();
  return **std::move(reading);
}

Result<SheetRows> readByWorker(const AskWorker& ask, DocumentWorkerRequest& request) {
  TableSelection& selection = *request.selection;
  request.operation = DocumentWorkerRequest::Operation::extract;
  // Rows are printed as they are: their titles need not follow the rules of a table's.
  const bool firstRowIsHeader = std::exchange(selection.firstRowIsHeader, false);
  auto response = ask(request);
  selection.firstRowIsHeader = firstRowIsHeader;
  if (!response) return response.error();
  return rowsOf(*std::move(response->table), selection);
}

}  // namespace

Result<SheetRows> readRows(const AskWorker& ask, DocumentWorkerRequest& request) {
  const bool isIncomplete = !isComplete(*request.selection);
  if (isIncomplete) {
    auto reading = readInChild(request, isIncomplete);
    if (!reading) return reading.error();
    if (*reading) return **std::move(reading);
  } else if (isLargerThanTables(request.selection->range)) {
    return rowsInChild(request);
  }
  auto rows = readByWorker(ask, request);
  return !rows && isRuleOfTables(rows.error()) ? rowsInChild(request) : std::move(rows);
}

}  // namespace zelvo
