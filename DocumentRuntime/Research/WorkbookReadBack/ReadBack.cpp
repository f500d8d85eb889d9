#include "DocumentRuntime/Research/WorkbookReadBack/ReadBack.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cells/DoubleText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

namespace zelvo {
namespace {

using Kind = ResearchSheet::Kind;

/// Calls `visit` with every cell of a rectangle from A1 on, in blocks of the size that the reader takes at
/// once.
template <typename Visit>
void readInBlocks(const WorkbookReader& reader, std::string_view sheet, const CellAddress& last,
                  const std::set<CellAddress>& acceptedEmptyFormulaCells, const std::stop_token& stop,
                  const Visit& visit) {
  for (std::int64_t row = 1; row <= last.row; row += TableExtraction::maximumRows) {
    for (std::int64_t column = 1; column <= last.column; column += TableExtraction::maximumColumns) {
      const CellRange block{
          .first = {.column = column, .row = row},
          .last = {.column = std::min(last.column, column + TableExtraction::maximumColumns - 1),
                   .row = std::min(last.row, row + TableExtraction::maximumRows - 1)}};
      const SourceTable table = reader.table({.sheetName = std::string(sheet),
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

/// The text with a line feed for each carriage return, alone or before a line feed: so XML is read.
std::string withLineFeeds(std::string_view text) {
  std::string normalized;
  normalized.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r')
      normalized += text[i];
    else if (text.substr(i, 2) != "\r\n")
      normalized += '\n';
  }
  return normalized;
}

/// As written, a text lacks the characters that XML cannot carry.
bool saysAsWritten(const SourceCell& cell, std::string_view text) {
  return cell.value.kind() == SourceCellValue::Kind::text &&
         OOXML::escaped(cell.value.payload()) == withLineFeeds(OOXML::escaped(text));
}

void checkSources(const WorkbookReader& reader, const ResearchSheet& sheet, const std::stop_token& stop) {
  readInBlocks(reader, sheet.name, lastCell(sheet.rows.front().size(), sheet.rows.size()), {}, stop,
               [&](const CellAddress& address, const SourceCell& cell) {
                 const auto& written = sheet.rows[static_cast<std::size_t>(address.row - 1)]
                                                 [static_cast<std::size_t>(address.column - 1)];
                 if (!saysAsWritten(cell, written.displayText()))
                   throw DocumentError::validationFailed("source provenance readback");
               });
}

/// The formula cells whose result is blank: the reader would refuse them in a stranger's workbook.
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

/// The heading row and the column of sources say nothing that could be computed with.
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
