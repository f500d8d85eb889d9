#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Kind = ResearchSheet::Kind;

/// Calls `visit` with every cell from A1 to `last`, in blocks of the largest size that the reader accepts.
template <typename Visit>
void readInBlocks(const WorkbookReader& reader, std::string_view sheetName, const CellAddress& last,
                  const std::set<CellAddress>& acceptedEmptyFormulaCells, const std::stop_token& stop,
                  const Visit& visit) {
  const WorkbookReader::Worksheet sheet = reader.worksheet(sheetName);
  for (std::int64_t row = 1; row <= last.row; row += TableExtraction::maximumRows) {
    for (std::int64_t column = 1; column <= last.column; column += TableExtraction::maximumColumns) {
      const CellRange block{
          .first = {.column = column, .row = row},
          .last = {.column = std::min(last.column, column + TableExtraction::maximumColumns - 1),
                   .row = std::min(last.row, row + TableExtraction::maximumRows - 1)}};
      const SourceTable table = sheet.table({.sheetName = std::string(sheetName),
                                             .range = block.name(),
                                             .firstRowIsHeader = false,
                                             .includeHiddenRows = true,
                                             .allowCachedFormulaValues = true},
                                            acceptedEmptyFormulaCells, stop);
      for (const auto& cells : table.rows) {
        for (const SourceCell& cell : cells)
          visit(CellAddress::parse(cell.address), cell);
      }
    }
  }
}

CellAddress lastCell(std::size_t columns, std::size_t rows) {
  return {.column = static_cast<std::int64_t>(columns), .row = static_cast<std::int64_t>(rows)};
}

const ResearchSheet& sheetOf(const ResearchWorkbookContent& content, Kind kind) {
  // Every workbook has a Data and a Sources sheet.
  return *std::ranges::find(content.sheets, kind, &ResearchSheet::kind);
}

/// The text as read from an XML element: without the characters that XML does not allow, and with one line
/// feed for each CR or CR LF. This check has its own rule, so that it does not repeat a mistake of the
/// author.
std::string asRead(std::string_view text) {
  std::string kept;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t scalar = Unicode::nextScalar(text, at);
    const bool isControl = scalar < U' ' && scalar != U'\t' && scalar != U'\n' && scalar != U'\r';
    if (!isControl && scalar != U'\uFFFE' && scalar != U'\uFFFF') Unicode::append(kept, scalar);
  }
  std::string read;
  for (std::size_t i = 0; i < kept.size(); ++i) {
    if (kept.compare(i, 2, "\r\n") != 0) read += kept[i] == '\r' ? '\n' : kept[i];
  }
  return read;
}

bool holdsText(const SourceCell& cell, std::string_view text) {
  return cell.value.kind() == SourceCellValue::Kind::text && cell.value.payload() == asRead(text);
}

void checkSources(const WorkbookReader& reader, const ResearchSheet& sheet, const std::stop_token& stop) {
  readInBlocks(reader, sheet.name, lastCell(sheet.rows.front().size(), sheet.rows.size()), {}, stop,
               [&](const CellAddress& address, const SourceCell& cell) {
                 const auto& written = sheet.rows[static_cast<std::size_t>(address.row - 1)]
                                                 [static_cast<std::size_t>(address.column - 1)];
                 if (!holdsText(cell, written.displayText()))
                   throw DocumentError::validationFailed("source provenance readback");
               });
}

/// The formula cells with a blank result: the reader refuses them unless they are listed.
std::set<CellAddress> blankResults(const CalculationMap& calculations) {
  std::set<CellAddress> addresses;
  for (const auto& [address, calculation] : calculations) {
    if (!calculation.value) addresses.insert(address);
  }
  return addresses;
}

bool holdsFormula(const SourceCell& cell, const ResolvedCalculation& calculation) {
  const auto kind = calculation.value ? SourceCellValue::Kind::number : SourceCellValue::Kind::text;
  return cell.formula == calculation.formula && cell.value.kind() == kind &&
         cell.value.payload() ==
             (calculation.value ? DoubleText::shortest(*calculation.value) : std::string());
}

bool holdsNumber(const SourceCell& cell, double number) {
  return !cell.formula && cell.value.kind() == SourceCellValue::Kind::number &&
         cell.value.payload() == DoubleText::shortest(number);
}

/// Skips the heading row and the column of sources, which have only texts.
void checkData(const WorkbookReader& reader, const ResearchWorkbookContent& content,
               const std::stop_token& stop) {
  readInBlocks(reader, sheetOf(content, Kind::data).name,
               lastCell(content.dataset->columns.size(), content.cells.size() + 1),
               blankResults(content.calculations), stop,
               [&](const CellAddress& address, const SourceCell& cell) {
                 if (address.row == 1) return;
                 const auto calculation = content.calculations.find(address);
                 if (calculation != content.calculations.end()) {
                   if (!holdsFormula(cell, calculation->second))
                     throw DocumentError::validationFailed("formula readback");
                   return;
                 }
                 const double* number = content
                                            .cells[static_cast<std::size_t>(address.row - 2)]
                                                  [static_cast<std::size_t>(address.column - 1)]
                                            .number();
                 if (number && !holdsNumber(cell, *number))
                   throw DocumentError::validationFailed("numeric readback");
               });
}

}  // namespace

void readBackResearchWorkbook(ByteView workbook, const ResearchWorkbookContent& content,
                              const std::stop_token& stop) {
  const WorkbookReader reader(workbook, "workbook.xlsx", stop);
  checkSources(reader, sheetOf(content, Kind::sources), stop);
  checkData(reader, content, stop);
}

}  // namespace zelvo
