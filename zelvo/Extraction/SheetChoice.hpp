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

/// Whether a selection names its sheet and its range. A number that may be a sheet's is no name.
bool isComplete(const TableSelection& selection);

/// Completes a selection as the command line gives it. The sheet is a name, or else a number from 1, or "#"
/// and a number, or empty for the only visible sheet; it becomes the sheet's name. An empty range becomes the
/// populated one, and stays empty if the sheet is.
Failure complete(TableSelection& selection, const WorkbookInspection& inspection);

/// Completes the request's selection for a table of cells; inspects the workbook if that is needed. An empty
/// sheet is an error.
Failure completeTableSelection(const AskWorker& ask, DocumentWorkerRequest& request);

/// Whether a range has more columns or rows than a table. False for a text that is no range.
bool isLargerThanTables(const std::string& range);

/// "Visible sheets: Sales (A1:D20), Notes (empty)"
std::string visibleSheets(const WorkbookInspection& inspection);

/// Whether no sheet was named and not exactly one is visible.
bool isUnclearChoice(const CommandError& error);

}  // namespace zelvo
