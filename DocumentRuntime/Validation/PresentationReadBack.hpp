#pragma once

#include <stop_token>
#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Validation/GeneratedPackage.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"

namespace zelvo {

inline constexpr std::string_view presentationPartName = "ppt/presentation.xml";

/// The table that a presentation shows over its slides, with the header that every slide repeats counted
/// once. Throws `DocumentError` validationFailed, in this order: "unexpected presentation package part",
/// "presentation slides"; slide by slide "presentation slides", "duplicate slide", "slide root"; then
/// "repeated table header", "missing chart or orphaned chart workbook", "unexpected chart"; then what the
/// chart's read-back throws.
TableTexts readPresentation(const GeneratedPackage& package, const SourceTable* expectedTable,
                            const ChartSelection* expectedChart, const std::stop_token& stop);

}  // namespace zelvo
