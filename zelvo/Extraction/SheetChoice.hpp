#pragma once

#include <functional>
#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "zelvo/Output/Result.hpp"

// The sheet and the range that a command line selects.
namespace zelvo {

/// Sends a request to a worker. Returns the response, or its error.
using AskWorker = std::function<Result<DocumentWorkerResponse>(const DocumentWorkerRequest&)>;

/// Replaces the sheet of the request's selection as the command line gives it (a name, or else a number from
/// 1, or "#" and a number, or empty for the only visible sheet) by the sheet's name, and an empty range by
/// the populated one, which stays empty if the sheet is. Inspects the workbook if that is needed.
Failure completeSelection(const AskWorker& ask, DocumentWorkerRequest& request);

/// As above, for a table of cells: an empty sheet is an error.
Failure completeTableSelection(const AskWorker& ask, DocumentWorkerRequest& request);

/// An error of a request that selected a table: if it is about the selection, with what can be selected and
/// what helps as hints.
CommandError withSelectionHints(CommandError error, const AskWorker& ask, DocumentWorkerRequest& request);

}  // namespace zelvo
