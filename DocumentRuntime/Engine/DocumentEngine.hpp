#pragma once

#include <stop_token>
#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"

/// The operations on documents. Stateless; every failure is a `DocumentError` of the rule that failed, or
/// `Cancelled`.
namespace zelvo::DocumentEngine {

/// Describes a workbook. `data` holds the XLSX bytes and is freed on the way; `sourceName` is UTF-8.
WorkbookInspection inspectXLSX(ByteBuffer data, std::string_view sourceName,
                               const std::stop_token& stop = {});

}  // namespace zelvo::DocumentEngine
