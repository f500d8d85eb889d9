#pragma once

#include <stop_token>
#include <string_view>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Validation/GeneratedPackage.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* missingChart = "missing chart or orphaned chart workbook";
inline constexpr const char* unexpectedChart = "unexpected chart";

}  // namespace RefusalDetail

inline constexpr std::string_view wordPartName = "word/document.xml";
inline constexpr std::string_view presentationPartName = "ppt/presentation.xml";

/// Reads the one table of a Word document into `table`. Throws `DocumentError` validationFailed "unexpected
/// Word package part" or "Word table".
void readWord(const GeneratedPackage& package, TableReadBack& table);

/// Reads the table on the slides of a presentation into `table`, with the header of every slide counted once,
/// and verifies the chart. Throws `DocumentError` validationFailed, in this order: "unexpected presentation
/// package part", "presentation slides"; slide by slide "presentation slides", "duplicate slide", "slide
/// root", "repeated table header"; then "missing chart or orphaned chart workbook", "unexpected chart"; then
/// what the chart's read-back throws.
void readPresentation(const GeneratedPackage& package, TableReadBack& table, const SourceTable* expectedTable,
                      const ChartSelection* expectedChart, const std::stop_token& stop);

}  // namespace zelvo
