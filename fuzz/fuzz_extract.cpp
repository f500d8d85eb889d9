// Extraction from workbooks of every kind: each cell that is given out shows the text that the workbook
// stores.

#include <string>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "fuzz/PackageMutator.hpp"
#include "fuzz/Require.hpp"

namespace {

using Kind = zelvo::SourceCellValue::Kind;

/// What must hold of any cell that was accepted, whatever the workbook.
void requireFaithful(const zelvo::SourceCell& cell, const zelvo::CellRange& range) {
  ZELVO_REQUIRE(range.contains(zelvo::CellAddress::parse(cell.address)));
  ZELVO_REQUIRE(cell.usesCachedFormulaValue == cell.formula.has_value());
  if (cell.value.kind() == Kind::number && !cell.numberFormat) {
    ZELVO_REQUIRE(cell.displayText() == cell.value.payload());
  }
  if (cell.value.kind() == Kind::missing) ZELVO_REQUIRE(cell.displayText().empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const zelvo::WorkbookReader reader(zelvo::ByteBuffer::copyOf({data, size}), "book.xlsx");
    for (const zelvo::Sheet& sheet : reader.sheets()) {
      for (const bool header : {true, false}) {
        const zelvo::TableSelection selection{.sheetName = sheet.name,
                                              .range = "A1:H40",
                                              .firstRowIsHeader = header,
                                              .includeHiddenRows = !header,
                                              .allowCachedFormulaValues = true};
        try {
          const zelvo::SourceTable table = reader.table(selection);
          const auto range = zelvo::CellRange::parse(table.selectedRange);
          for (const auto& row : table.rows) {
            ZELVO_REQUIRE(row.size() == table.columns.size());
            for (const auto& cell : row)
              requireFaithful(cell, range);
          }
        } catch (const zelvo::DocumentError& error) {
          ZELVO_REQUIRE(!error.detail().empty());
        }
      }
    }
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(!error.detail().empty());
  }
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maximumSize,
                                               unsigned seed) {
  return zelvo::fuzzing::mutatePackage(data, size, maximumSize, seed);
}
