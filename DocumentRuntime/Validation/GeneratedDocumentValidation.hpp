#pragma once

#include <stop_token>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// Verifies that a package has the structure of a generated document and, with a table, that it shows exactly
/// the values of that table. Nothing is rendered. Throws `DocumentError` (the rules of package, profile,
/// structure, chart and table, in this order) or `Cancelled`. `expectedChart` applies to presentations only.
DocumentValidation validateGeneratedDocument(ByteView data, DocumentFormat format,
                                             const SourceTable* expectedTable,
                                             const ChartSelection* expectedChart,
                                             const std::stop_token& stop = {});

}  // namespace zelvo
