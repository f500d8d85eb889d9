#pragma once

#include <optional>
#include <stop_token>
#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* longSlideCells =
    "long slide cells; use a Word table or a smaller presentation selection";

}  // namespace zelvo::RefusalDetail

/// The operations on documents. Stateless. Every failure is a `DocumentError` with the rule that failed, or
/// `Cancelled`.
namespace zelvo::DocumentEngine {

/// Describes a workbook. `data` holds the XLSX bytes and is freed early; `sourceName` is UTF-8.
WorkbookInspection inspectXLSX(ByteBuffer data, std::string_view sourceName,
                               const std::stop_token& stop = {});

/// Extracts a table from a workbook. Refuses formulas with an empty stored result.
SourceTable extractTable(ByteBuffer data, std::string_view sourceName, const TableSelection& selection,
                         const std::stop_token& stop = {});

/// Writes a table as a Word document, and verifies the result by reading it back before returning it. Throws
/// what `validateInput`, the author and `validate` throw.
GeneratedDocument createDOCX(const SourceTable& table, std::string_view title,
                             const std::stop_token& stop = {});

/// The same as a presentation, with a chart slide if `chart` is given. Between `validateInput` and
/// `validateChart` throws unsupported "long slide cells; use a Word table or a smaller presentation
/// selection".
GeneratedDocument createPPTX(const SourceTable& table, std::string_view title,
                             const std::optional<ChartSelection>& chart, const std::stop_token& stop = {});

/// As `validateGeneratedDocument`.
DocumentValidation validate(ByteView data, DocumentFormat format, const SourceTable* expectedTable,
                            const ChartSelection* expectedChart, const std::stop_token& stop = {});

/// As `DocumentInputRules::checkTable` and `DocumentInputRules::checkChart`.
void validateInput(const SourceTable& table, std::string_view title);
void validateChart(const ChartSelection& selection, const SourceTable& table);

}  // namespace zelvo::DocumentEngine
