// Documents of tables of arbitrary workbooks: every result passes its own validation, and no text of the
// workbook is repeated without bound.

#include <algorithm>
#include <optional>
#include <string>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/MutatesPackages.hpp"
#include "fuzz/Require.hpp"

namespace {

/// Enough rows of six lines to fill all slides that a presentation may have.
constexpr const char* range = "A1:B40";

/// The memory of slides and charts without their texts.
constexpr std::size_t frameBytes = 2 << 20;
/// The parts of a document, its archive and its reading back each hold the text of a table, and the sheet's
/// name once for each of 21 slides.
constexpr std::size_t copies = 63;  // 3 × 21

/// A document is in memory as parts, as an archive and as the trees of the read-back, each within the
/// archive's limit.
std::size_t resultBytes(const zelvo::SourceTable& table) {
  return frameBytes +
         std::min(copies * toJson(table).size(), 3 * std::size_t{zelvo::BoundedZIP::maximumArchiveBytes});
}

std::optional<zelvo::SourceTable> firstTable(zelvo::ByteView archive) {
  try {
    const zelvo::WorkbookReader reader(zelvo::ByteBuffer::copyOf(archive), "book.xlsx");
    return reader.table({.sheetName = reader.sheets().front().name,
                         .range = range,
                         .firstRowIsHeader = true,
                         .includeHiddenRows = true,
                         .allowCachedFormulaValues = true});
  } catch (const zelvo::DocumentError&) {
    return std::nullopt;
  }
}

template <typename Create>
void requireValid(const Create& create, const zelvo::SourceTable& table,
                  const zelvo::ChartSelection* chart = nullptr) {
  try {
    const zelvo::GeneratedDocument document = create();
    ZELVO_REQUIRE(document.validation ==
                  zelvo::DocumentEngine::validate(document.data.view(), document.format, &table, chart));
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(!error.detail().empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zelvo::ByteView archive{data, size};
  const auto table = firstTable(archive);
  if (!table) return 0;
  const auto limit = zelvo::fuzzing::documentMemory(archive, resultBytes(*table));
  const zelvo::ChartSelection chart{.categoryColumn = 0, .valueColumn = 1, .title = "Chart"};
  requireValid([&] { return zelvo::DocumentEngine::createDOCX(*table, "Title"); }, *table);
  requireValid([&] { return zelvo::DocumentEngine::createPPTX(*table, "Title", std::nullopt); }, *table);
  requireValid([&] { return zelvo::DocumentEngine::createPPTX(*table, "Title", chart); }, *table, &chart);
  return 0;
}
