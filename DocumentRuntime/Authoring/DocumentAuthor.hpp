#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* tallSlideRow =
    "presentation cells need too much vertical space; use Word or fewer columns";
inline constexpr const char* slideCount = "presentation exceeds 20 table slides";
inline constexpr const char* longSlideTitle = "presentation title is too long for two lines";
inline constexpr const char* longChartTitle = "chart title is too long for two lines";

}  // namespace zelvo::RefusalDetail

/// Writes documents that show an extracted table. The input rules must have passed: only rules of the layout
/// are checked here. Equal inputs give equal bytes.
namespace zelvo::DocumentAuthor {

/// A Word document: title, provenance, one table. Throws what the ZIP writer throws.
ByteBuffer docx(const SourceTable& table, std::string_view title, const std::stop_token& stop = {});

/// A 16:9 presentation: the table on at most 20 slides and, on request, a slide with an editable column
/// chart. Throws `DocumentError`, in this order: unsupported "presentation cells need too much vertical
/// space; use Word or fewer columns"; resourceLimit "presentation exceeds 20 table slides"; unsupported
/// "presentation title is too long for two lines" or "chart title is too long for two lines"; then what the
/// ZIP writer throws.
ByteBuffer pptx(const SourceTable& table, std::string_view title, const std::optional<ChartSelection>& chart,
                const std::stop_token& stop = {});

}  // namespace zelvo::DocumentAuthor
