#include "zelvo/Extraction/SheetBlocks.hpp"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "zelvo/Extraction/RowCoding.hpp"
#include "zelvo/Extraction/SheetChoice.hpp"

namespace zelvo {
namespace {

constexpr const char* emptySheetRange = "A1";

/// Of one block. A table may have one row more.
constexpr std::int64_t blockRows = TableExtraction::maximumRows - 1;
constexpr std::int64_t blockColumns = TableExtraction::maximumColumns;

/// Of the JSON of most cells. Where a block needs more, its text is copied while it grows.
constexpr std::size_t expectedCellBytes = 64;

DocumentError tooLarge(const std::string& what, const CellRange& range) {
  return DocumentError::resourceLimit("more than " + what + " in " + range.name() +
                                      "; select fewer with --range");
}

bool hasCellContent(XMLNode cell) {
  return cell.child("v") || cell.child("f") || cell.child("is");
}

/// A block's line.
std::string encoded(const SourceTable& block, const CellRange& range) {
  JsonWriter writer(expectedCellBytes * blockRows * blockColumns);
  writer.beginObject();
  writer.key("column");
  writer.integer(range.first.column);
  writer.key("warnings");
  encode(writer, block.warnings);
  writer.key("rows");
  writer.beginArray();
  for (const std::vector<SourceCell>& row : block.rows)
    RowCoding::encode(writer, CellAddress::parse(row.front().address).row, row);
  writer.endArray();
  writer.endObject();
  return writer.take();
}

/// The range up to the last row with content; its first row if there is none.
CellRange trimmed(const CellRange& range, const WorksheetContents& contents) {
  CellRange result = range;
  result.last.row = range.first.row;
  for (const WorksheetContents::Cell& cell : contents.cells()) {
    if (cell.address.row > result.last.row && range.contains(cell.address) && hasCellContent(cell.element))
      result.last.row = cell.address.row;
  }
  return result;
}

NumberSpans hiddenRowsIn(const CellRange& range, const WorksheetContents& contents) {
  NumberSpans spans;
  for (const std::int64_t row : contents.hiddenRows()) {
    if (range.first.row <= row && row <= range.last.row) append(spans, row, row);
  }
  return spans;
}

NumberSpans hiddenColumnsIn(const CellRange& range, const WorksheetContents& contents) {
  NumberSpans spans;
  for (const ColumnSpan& span : contents.hiddenColumns()) {
    const std::int64_t first = std::max(span.first, range.first.column);
    const std::int64_t last = std::min(span.last, range.last.column);
    if (first <= last) append(spans, first, last);
  }
  return spans;
}

/// Reads one range of one sheet.
class BlockReader {
 public:
  BlockReader(const WorkbookReader& workbook, const TableSelection& selection)
      : workbook_(workbook), selection_(selection), sheet_(workbook.worksheet(selection.sheetName)) {
    selection_.firstRowIsHeader = false;
    range_ = trimmed(CellRange::parse(selection.range), contents());
    if (!selection.includeHiddenRows) hiddenRows_ = hiddenRowsIn(range_, contents());
    hiddenColumns_ = hiddenColumnsIn(range_, contents());
    checkCellCount();
    columns_ = numbersWithout(hiddenColumns_, range_.first.column, range_.last.column);
    checkMergedAreas();
  }

  std::string lines() {
    // Memory that is not written to costs nothing.
    lines_.reserve(DocumentWorkerWire::maximumMessageBytes);
    add(toJson(SheetOutline{workbook_.sourceSHA256(), selection_.sheetName, range_.name(), hiddenRows_,
                            hiddenColumns_}));
    const std::vector<NumberSpan> runs = columnRuns();
    auto cell = contents().cells().begin();
    while (cell != contents().cells().end() && cell->address < range_.first)
      ++cell;
    for (std::int64_t row = range_.first.row; row <= range_.last.row; row += blockRows) {
      const std::int64_t last = std::min(row + blockRows - 1, range_.last.row);
      std::vector<bool> isFilled(runs.size());
      for (; cell != contents().cells().end() && cell->address.row <= last; ++cell)
        mark(*cell, runs, isFilled);
      for (std::size_t i = 0; i < runs.size(); ++i) {
        if (isFilled[i]) add(block({{runs[i].first, row}, {runs[i].last, last}}));
      }
    }
    return std::move(lines_);
  }

 private:
  const WorksheetContents& contents() const { return sheet_.contents(); }

  void checkCellCount() const {
    const std::int64_t rows = range_.last.row - range_.first.row + 1 - countOf(hiddenRows_);
    const std::int64_t columns = range_.last.column - range_.first.column + 1 - countOf(hiddenColumns_);
    if (rows * columns > SheetBlocks::maximumCells)
      throw tooLarge(std::to_string(SheetBlocks::maximumCells) + " cells", range_);
  }

  /// A merged area is refused if one of its columns is read.
  void checkMergedAreas() const {
    std::optional<CellAddress> first;
    for (const CellRange& area : contents().mergedAreas()) {
      const auto column = std::ranges::lower_bound(columns_, area.first.column);
      const bool isRead = area.intersects(range_) && column != columns_.end() && *column <= area.last.column;
      if (isRead && (!first || area.first < *first)) first = area.first;
    }
    if (first)
      throw DocumentError::unsupported(std::string(RefusalDetail::mergedCells) + " at " + first->name());
  }

  /// Adjacent columns that are read, in runs that a block can hold.
  std::vector<NumberSpan> columnRuns() const {
    std::vector<NumberSpan> runs;
    for (const std::int64_t column : columns_) {
      const bool continues =
          !runs.empty() && runs.back().last + 1 == column && column - runs.back().first < blockColumns;
      if (continues) {
        runs.back().last = column;
      } else {
        runs.push_back({column, column});
      }
    }
    return runs;
  }

  /// Marks the run that the cell makes worth reading, if any.
  void mark(const WorksheetContents::Cell& cell, const std::vector<NumberSpan>& runs,
            std::vector<bool>& isFilled) const {
    const auto run = std::ranges::lower_bound(runs, cell.address.column, {}, &NumberSpan::last);
    if (run == runs.end() || cell.address.column < run->first || !hasCellContent(cell.element)) return;
    if (!selection_.includeHiddenRows && contents().isHiddenRow(cell.address.row)) return;
    isFilled[static_cast<std::size_t>(run - runs.begin())] = true;
  }

  SourceTable table(const CellRange& range) {
    selection_.range = range.name();
    return sheet_.table(selection_);
  }

  std::string block(const CellRange& range) {
    try {
      return encoded(table(range), range);
    } catch (const ResponseTooLarge&) {
      throw contentTooLarge();
    } catch (const DocumentError& error) {
      throw std::runtime_error(messageWithCell(error, range));
    }
  }

  /// The error of a block, with the first cell that alone gives the same one, unless it names that already.
  std::string messageWithCell(const DocumentError& error, const CellRange& range) {
    for (CellAddress address = range.first; address.row <= range.last.row; ++address.row) {
      for (address.column = range.first.column; address.column <= range.last.column; ++address.column) {
        try {
          table({address, address});
        } catch (const DocumentError& cellError) {
          if (!(cellError == error)) continue;
          const bool isNamed = error.detail().ends_with(address.name());
          return error.errorDescription() + (isNamed ? "" : " (cell " + address.name() + ")");
        }
      }
    }
    return error.errorDescription();
  }

  DocumentError contentTooLarge() const { return tooLarge("40 MiB of cells", range_); }

  void add(std::string_view line) {
    if (lines_.size() + line.size() >= DocumentWorkerWire::maximumMessageBytes) throw contentTooLarge();
    lines_.append(line) += '\n';
  }

  const WorkbookReader& workbook_;
  TableSelection selection_;
  const WorkbookReader::Worksheet sheet_;
  CellRange range_;
  NumberSpans hiddenRows_;
  NumberSpans hiddenColumns_;
  std::vector<std::int64_t> columns_;
  std::string lines_;
};

}  // namespace

Result<std::string> SheetBlocks::linesOf(ByteBuffer workbook, const std::string& sourceName,
                                         TableSelection selection, bool isIncomplete) {
  const WorkbookReader reader(std::move(workbook), sourceName);
  if (isIncomplete) {
    if (Failure failure = complete(selection, reader.inspection())) return *std::move(failure);
    if (selection.range.empty()) selection.range = emptySheetRange;
    if (!isLargerThanTables(selection.range))
      return toJson(SheetOutline{reader.sourceSHA256(), selection.sheetName, selection.range, {}, {}}) + "\n";
  }
  return BlockReader(reader, selection).lines();
}

}  // namespace zelvo
