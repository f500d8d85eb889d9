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
#include "zelvo/Extraction/SheetBlocks.hpp"

namespace zelvo {
namespace {

constexpr const char* emptySheetRange = "A1";

/// False also for a range that is malformed, which the worker refuses.
bool isLargerThanTables(const std::string& text) {
  try {
    const CellRange range = CellRange::parse(text);
    return range.last.column - range.first.column >= TableExtraction::maximumColumns ||
           range.last.row - range.first.row >= TableExtraction::maximumRows;
  } catch (const DocumentError&) {
    return false;
  }
}

/// True if only tables are refused for this: rows can leave out what is hidden, and the child names a merged
/// cell.
bool isRuleOfTables(const CommandError& error) {
  static const std::vector<std::string> messages = {
      DocumentError::unsupported(Refusal::mergedCells).errorDescription(),
      DocumentError::invalidSelection(Refusal::hiddenColumns).errorDescription(),
      DocumentError::invalidSelection(Refusal::noVisibleRows).errorDescription()};
  return error.status == ExitStatus::refused && std::ranges::count(messages, error.message) > 0;
}

/// Takes the first line of a text, without its line feed.
std::string_view takeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

/// Joins the lines of `SheetBlocks`. The child that wrote them may have been taken over by the document:
/// every count, address and number is checked. Throws `DecodingError`, `DocumentError` or
/// `std::runtime_error` if they are not such lines.
class Joiner {
 public:
  explicit Joiner(const TableSelection& selection) : requested_(CellRange::parse(selection.range)) {
    rows_.sheetName = selection.sheetName;
    rows_.firstRowIsHeader = selection.firstRowIsHeader;
  }

  SheetRows join(std::string_view lines) {
    begin(fromJson<SheetOutline>(std::string(takeLine(lines))));
    while (!lines.empty())
      add(fromJson<SourceTable>(std::string(takeLine(lines))));
    removeTrailingRows(rows_);
    return std::move(rows_);
  }

 private:
  static void require(bool condition) {
    if (!condition) throw std::runtime_error("The blocks of the sheet do not fit together.");
  }

  static void requireSpans(const NumberSpans& spans, std::int64_t first, std::int64_t last) {
    for (const NumberSpan& span : spans) {
      require(first <= span.first && span.first <= span.last && span.last <= last);
      first = span.last + 1;
    }
  }

  void begin(SheetOutline outline) {
    rows_.sourceSHA256 = std::move(outline.sourceSHA256);
    rows_.range = CellRange::parse(outline.range);
    rows_.hiddenRows = std::move(outline.hiddenRows);
    rows_.hiddenColumns = std::move(outline.hiddenColumns);
    const auto& [first, last] = rows_.range;
    require(first == requested_.first && last.column == requested_.last.column && first.row <= last.row &&
            last.row <= requested_.last.row);
    requireSpans(rows_.hiddenRows, first.row, last.row);
    requireSpans(rows_.hiddenColumns, first.column, last.column);
    rows_.columns = numbersWithout(rows_.hiddenColumns, first.column, last.column);
    const auto rowNumbers = numbersWithout(rows_.hiddenRows, first.row, last.row);
    require(std::ssize(rowNumbers) * std::ssize(rows_.columns) <= SheetBlocks::maximumCells);
    rows_.rows.reserve(rowNumbers.size());
    for (const std::int64_t number : rowNumbers)
      rows_.rows.push_back({number, std::vector<SourceCell>(rows_.columns.size())});
  }

  void add(SourceTable block) {
    for (std::string& warning : block.warnings) {
      if (std::ranges::count(rows_.warnings, warning) == 0) rows_.warnings.push_back(std::move(warning));
    }
    require(rows_.warnings.size() <= maximumWarnings);
    for (std::vector<SourceCell>& row : block.rows) {
      for (SourceCell& cell : row)
        place(std::move(cell));
    }
  }

  void place(SourceCell cell) {
    const CellAddress address = CellAddress::parse(cell.address);
    const auto row = std::ranges::lower_bound(rows_.rows, address.row, {}, &SheetRows::Row::number);
    const auto column = std::ranges::lower_bound(rows_.columns, address.column);
    require(row != rows_.rows.end() && row->number == address.row);
    require(column != rows_.columns.end() && *column == address.column);
    row->cells[static_cast<std::size_t>(column - rows_.columns.begin())] = std::move(cell);
  }

  /// More than a table has.
  static constexpr std::size_t maximumWarnings = keptWarnings;

  CellRange requested_;
  SheetRows rows_;
};

Result<SheetRows> readInChild(DocumentWorkerRequest& request) {
  const auto lines = runConfinedChild([&request] {
    return SheetBlocks::linesOf(std::move(request.data), request.sourceName, *request.selection);
  });
  if (!lines) return lines.error();
  try {
    return Joiner(*request.selection).join(*lines);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return unreadableResult(error.what());
  }
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
  if (Failure failure = completeSelection(ask, request)) return *std::move(failure);
  std::string& range = request.selection->range;
  if (range.empty()) range = emptySheetRange;
  if (isLargerThanTables(range)) return readInChild(request);
  auto rows = readByWorker(ask, request);
  if (!rows && isRuleOfTables(rows.error())) return readInChild(request);
  return rows;
}

}  // namespace zelvo
