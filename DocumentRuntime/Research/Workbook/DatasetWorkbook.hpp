#pragma once

#include <optional>
#include <stop_token>
#include <string_view>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "DocumentRuntime/Research/WorkbookReadBack/Content.hpp"

namespace zelvo {

/// Whether a workbook has a theme part. Without one LibreOffice draws its charts without colours.
enum class WorkbookTheme { none, included };

/// All parts of a dataset's workbook.
PartMap researchWorkbookPackage(const ResearchWorkbookContent& content,
                                WorkbookTheme theme = WorkbookTheme::none);

/// Workbooks of research results. The input is untrusted text of a language model; the same input always
/// gives the same bytes.
namespace ResearchWorkbook {

/// A workbook of a dataset: an overview with native charts if there are any, the data as a table with live
/// formulas and their locally computed results, the report, and the sources with their provenance.
///
/// Throws `DocumentError`: what `ResearchSpreadsheet::validate` and the evaluator throw; resourceLimit for
/// more report lines or sources, or a longer URL or text of a record, than a sheet can hold; what the ZIP
/// writer throws; what `WorkbookReader` throws when the written bytes are read back; and validationFailed
/// "source provenance readback", "formula readback" or "numeric readback" if they differ from the content.
/// Throws `Cancelled`.
ByteBuffer make(std::string_view title, const ResearchSpreadsheet& content, const AllowedSources& sources,
                const std::optional<ResearchSourceScope>& sourceScope,
                WorkbookTheme theme = WorkbookTheme::none, const std::stop_token& stop = {});

}  // namespace ResearchWorkbook

}  // namespace zelvo
