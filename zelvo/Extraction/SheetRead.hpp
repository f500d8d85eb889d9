#pragma once

#include "zelvo/Extraction/SheetChoice.hpp"
#include "zelvo/Extraction/SheetRows.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// Reads the rows that the request's selection selects, and completes it (see `complete`). A range within the
/// bounds of a table is extracted by a worker; a larger one, or one with hidden columns, is read by one
/// confined child of this process, which also completes the selection. An empty sheet has no rows.
Result<SheetRows> readRows(const AskWorker& ask, DocumentWorkerRequest& request);

}  // namespace zelvo
