#pragma once

#include <stop_token>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::DocumentEngine {

/// Proves that a package is a document as this system writes it and, with a table, that it shows exactly that
/// table's values. `data` is only looked at. Nothing is rendered. Throws `DocumentError` (the rules of
/// package, profile, structure, chart and table, in this order) or `Cancelled`; a chart is expected of
/// presentations only.
DocumentValidation validate(ByteView data, DocumentFormat format, const SourceTable* expectedTable,
                            const ChartSelection* expectedChart, const std::stop_token& stop = {});

}  // namespace zelvo::DocumentEngine
