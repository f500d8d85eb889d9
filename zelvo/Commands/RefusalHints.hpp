#pragma once

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Hints/HintTable.hpp"
#include "zelvo/Output/Result.hpp"

// Adds hints to the errors of refusals. Other errors, and refusals without advice, are returned as they are.
namespace zelvo {

/// After `stage`, which is not `reading`, refused a document. The document is empty for `research`.
CommandError withHints(CommandError error, Stage stage, ByteView document = {});

/// After the worker refused a request about a workbook, which may have been cleaned. Finds out whether
/// cleaning helps by sending the same request about the cleaned workbook.
CommandError withHints(CommandError error, const Hosts& hosts, DocumentWorkerRequest request, Stage stage);

/// The same after a command that selected a sheet and a range.
CommandError withTableHints(CommandError error, const Hosts& hosts, WorkbookInput workbook);

}  // namespace zelvo
