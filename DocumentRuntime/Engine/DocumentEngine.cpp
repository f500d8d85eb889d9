#include "DocumentRuntime/Engine/DocumentEngine.hpp"

#include <utility>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumSlideTitleCharacters = 60;
constexpr std::size_t maximumSlideCellCharacters = 80;

/// Column titles first, then the cells row by row.
bool hasLongSlideCells(const SourceTable& table) {
  for (const std::string& column : table.columns) {
    if (Unicode::exceeds(column, maximumSlideTitleCharacters)) return true;
  }
  for (const auto& row : table.rows) {
    for (const SourceCell& cell : row) {
      if (Unicode::exceeds(cell.displayText(), maximumSlideCellCharacters)) return true;
    }
  }
  return false;
}

/// A document that fails validation is not returned.
GeneratedDocument validated(ByteBuffer data, DocumentFormat format, const SourceTable& table,
                            const ChartSelection* chart, const std::stop_token& stop) {
  DocumentValidation validation = DocumentEngine::validate(data.view(), format, &table, chart, stop);
  return {.data = std::move(data),
          .format = format,
          .sourceSHA256 = table.sourceSHA256,
          .validation = std::move(validation)};
}

}  // namespace

WorkbookInspection DocumentEngine::inspectXLSX(ByteBuffer data, std::string_view sourceName,
                                               const std::stop_token& stop) {
  return WorkbookReader(std::move(data), sourceName, stop).inspection();
}

SourceTable DocumentEngine::extractTable(ByteBuffer data, std::string_view sourceName,
                                         const TableSelection& selection, const std::stop_token& stop) {
  return WorkbookReader(std::move(data), sourceName, stop).table(selection, {}, stop);
}

GeneratedDocument DocumentEngine::createDOCX(const SourceTable& table, std::string_view title,
                                             const std::stop_token& stop) {
  validateInput(table, title);
  return validated(DocumentAuthor::docx(table, title, stop), DocumentFormat::docx, table, nullptr, stop);
}

GeneratedDocument DocumentEngine::createPPTX(const SourceTable& table, std::string_view title,
                                             const std::optional<ChartSelection>& chart,
                                             const std::stop_token& stop) {
  validateInput(table, title);
  if (hasLongSlideCells(table)) {
    throw DocumentError::unsupported(RefusalDetail::longSlideCells);
  }
  if (chart) validateChart(*chart, table);
  return validated(DocumentAuthor::pptx(table, title, chart, stop), DocumentFormat::pptx, table,
                   chart ? &*chart : nullptr, stop);
}

DocumentValidation DocumentEngine::validate(ByteView data, DocumentFormat format,
                                            const SourceTable* expectedTable,
                                            const ChartSelection* expectedChart,
                                            const std::stop_token& stop) {
  return validateGeneratedDocument(data, format, expectedTable, expectedChart, stop);
}

void DocumentEngine::validateInput(const SourceTable& table, std::string_view title) {
  DocumentInputRules::checkTable(table, title);
}

void DocumentEngine::validateChart(const ChartSelection& selection, const SourceTable& table) {
  DocumentInputRules::checkChart(selection, table);
}

}  // namespace zelvo
