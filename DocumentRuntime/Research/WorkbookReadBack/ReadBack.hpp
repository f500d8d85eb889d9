#pragma once

#include <stop_token>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

namespace zelvo {

/// Reads a written workbook through the same checks as untrusted input and compares it with its content:
/// every text of the Sources sheet, with the line ends that XML normalises; on the Data sheet every number,
/// formula and stored result.
///
/// Throws `DocumentError` validationFailed "source provenance readback", "formula readback" or "numeric
/// readback"; what `WorkbookReader` throws; `Cancelled`.
void readBackResearchWorkbook(ByteView workbook, const ResearchWorkbookContent& content,
                              const std::stop_token& stop = {});

}  // namespace zelvo
