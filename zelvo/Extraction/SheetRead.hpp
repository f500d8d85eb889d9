#pragma once

#include "zelvo/Extraction/SheetChoice.hpp"
#include "zelvo/Extraction/SheetRows.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// Reads the rows that the request's selection selects, which may be incomplete (see `completeSelection`). A
/// range within the bounds of a table is extracted by a worker; a larger one, or one with hidden columns, is
/// read by one confined child of this process. An empty sheet has no rows.
Result<SheetRows> readRows(const AskWorker& ask, DocumentWorkerRequest& request);

}  // namespace zelvo
