#pragma once

#include <optional>
#include <stop_token>
#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"

/// The operations on documents. Stateless; every failure is a `DocumentError` of the rule that failed, or
/// `Cancelled`.
namespace zelvo::DocumentEngine {

/// Describes a workbook. `data` holds the XLSX bytes and is freed on the way; `sourceName` is UTF-8.
WorkbookInspection inspectXLSX(ByteBuffer data, std::string_view sourceName,
                               const std::stop_token& stop = {});

/// Cuts one table out of a workbook. No formula with an empty stored result is accepted.
SourceTable extractTable(ByteBuffer data, std::string_view sourceName, const TableSelection& selection,
                         const std::stop_token& stop = {});

/// Writes a table as a Word document and proves the result before giving it out. Throws what the input rules,
/// the author and validation throw.
GeneratedDocument createDOCX(const SourceTable& table, std::string_view title,
                             const std::stop_token& stop = {});

/// The same as a presentation, with a chart slide if one is asked for. Between the input rules and the
/// chart's it throws unsupported "long slide cells; use a Word table or a smaller presentation selection".
GeneratedDocument createPPTX(const SourceTable& table, std::string_view title,
                             const std::optional<ChartSelection>& chart, const std::stop_token& stop = {});

}  // namespace zelvo::DocumentEngine
