// Arbitrary reports: the table is within its limits, and its workbook can be read and has the table's texts.

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/Unicode.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/Require.hpp"

namespace {

using zelvo::ResearchWorkbook::ReportTable;

constexpr std::size_t maximumReportCharacters = 60'000;
constexpr std::size_t maximumReportLines = 49'997;

/// The largest block that the reader returns.
constexpr std::size_t blockRows = 201;
constexpr std::size_t blockColumns = 8;

void requireBounded(const ReportTable& table) {
  ZELVO_REQUIRE(table.size() >= 2 && table.size() <= 501);
  for (const auto& row : table) {
    ZELVO_REQUIRE(row.size() == table.front().size() && row.size() >= 2 && row.size() <= 24);
    for (const std::string& cell : row) {
      ZELVO_REQUIRE(zelvo::Unicode::characterCount(cell) <= 2000);
      ZELVO_REQUIRE(cell.empty() || (cell.front() != ' ' && cell.front() != '\t'));
      ZELVO_REQUIRE(cell.empty() || (cell.back() != ' ' && cell.back() != '\t'));
      ZELVO_REQUIRE(zelvo::Unicode::lines(cell).size() == 1);
    }
  }
}

/// A second implementation of which texts are numbers: from the left, character by character.
bool isNumber(std::string_view text) {
  std::size_t at = text.substr(0, 1) == "-" ? 1 : 0;
  const auto digits = [&] {
    const std::size_t start = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9')
      ++at;
    return at - start;
  };
  const bool startsWithZero = text.substr(at, 1) == "0";
  const std::size_t whole = digits();
  if (whole < 1 || whole > 14 || (startsWithZero && whole > 1)) return false;
  if (at == text.size()) return true;
  if (text[at] != '.' && text[at] != ',') return false;
  ++at;
  const std::size_t fraction = digits();
  return at == text.size() && fraction >= 1 && fraction <= 6;
}

/// The part of a text that a workbook can store.
std::string shown(std::string text) {
  std::erase_if(text, [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; });
  for (const std::string_view noncharacter : {"\uFFFE", "\uFFFF"}) {
    for (std::size_t at = 0; (at = text.find(noncharacter, at)) != std::string::npos;)
      text.erase(at, noncharacter.size());
  }
  return text;
}

void requireShown(const std::string& text, const zelvo::SourceCell& cell, bool isHeader) {
  const bool isWrittenAsNumber = !isHeader && isNumber(text);
  ZELVO_REQUIRE((cell.value.kind() == zelvo::SourceCellValue::Kind::number) == isWrittenAsNumber);
  std::string expected = shown(text);
  if (isWrittenAsNumber) std::replace(expected.begin(), expected.end(), ',', '.');
  ZELVO_REQUIRE(cell.value.displayText() == expected);
}

/// Reads a block of the Data sheet from a zero-based row and column on.
void requireBlock(const zelvo::WorkbookReader& reader, const ReportTable& table, std::size_t firstRow,
                  std::size_t firstColumn) {
  const std::size_t rows = std::min(blockRows, table.size() - firstRow);
  const std::size_t columns = std::min(blockColumns, table.front().size() - firstColumn);
  const auto name = [](std::size_t row, std::size_t column) {
    return static_cast<char>('A' + column) + std::to_string(row + 1);
  };
  const zelvo::SourceTable block = reader.table(
      {.sheetName = "Data",
       .range = name(firstRow, firstColumn) + ":" + name(firstRow + rows - 1, firstColumn + columns - 1)});
  ZELVO_REQUIRE(block.rows.size() == rows);
  for (std::size_t row = 0; row < rows; ++row) {
    ZELVO_REQUIRE(block.rows[row].size() == columns);
    for (std::size_t column = 0; column < columns; ++column) {
      requireShown(table[firstRow + row][firstColumn + column], block.rows[row][column], firstRow + row == 0);
    }
  }
}

void requireReadable(zelvo::ByteBuffer workbook, const ReportTable& table) {
  const auto limit = zelvo::fuzzing::documentMemory(workbook.view());
  const zelvo::WorkbookReader reader(std::move(workbook), "report.xlsx");
  for (std::size_t row = 0; row < table.size(); row += blockRows) {
    for (std::size_t column = 0; column < table.front().size(); column += blockColumns)
      requireBlock(reader, table, row, column);
  }
}

/// The workbook of a report, or nothing where the report is rightly refused.
std::optional<zelvo::ByteBuffer> make(std::string_view report, const std::optional<ReportTable>& table) {
  const bool isTooLong = zelvo::Unicode::characterCount(report) > maximumReportCharacters;
  const bool hasTooManyLines = zelvo::Unicode::lines(report).size() > maximumReportLines;
  try {
    auto workbook = zelvo::ResearchWorkbook::make(report, report, {std::string(report), ""});
    ZELVO_REQUIRE(table && !isTooLong && !hasTooManyLines);
    return workbook;
  } catch (const zelvo::DocumentError& error) {
    using enum zelvo::DocumentError::Case;
    ZELVO_REQUIRE(isTooLong || !table || hasTooManyLines);
    ZELVO_REQUIRE(error.errorCase() == (isTooLong || table ? resourceLimit : validationFailed));
    return std::nullopt;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view report(reinterpret_cast<const char*>(data), size);
  if (!zelvo::Unicode::isValid(report)) return 0;
  std::optional<ReportTable> table;
  std::optional<zelvo::ByteBuffer> workbook;
  {
    const auto limit = zelvo::fuzzing::researchMemory(size);
    table = zelvo::ResearchWorkbook::firstTable(report);
    if (table) requireBounded(*table);
    workbook = make(report, table);
  }
  // Every exception of the reader is a finding.
  if (workbook) requireReadable(std::move(*workbook), *table);
  return 0;
}
