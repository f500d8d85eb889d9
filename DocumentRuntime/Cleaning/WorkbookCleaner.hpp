#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Records/CleaningReport.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* compoundFile = "encrypted or old binary workbook (compound file)";
inline constexpr const char* binaryWorkbook = "binary workbook (.xlsb)";
inline constexpr const char* noSuchWorksheet = "no worksheet is named ";
inline constexpr const char* noWorksheet = "no worksheet is left";
inline constexpr const char* rootElement = "root element of ";
/// Before the name of the sheet that an error is about, within its detail.
inline constexpr const char* sheetPlace = "sheet ";

}  // namespace RefusalDetail

struct CleaningOptions {
  /// The worksheets to keep, by their exact names; all if absent.
  std::optional<std::vector<std::string>> sheets;
  bool unmerge = false;       ///< removes merged areas; cells are unchanged
  bool plainFormats = false;  ///< replaces number formats that the workbook reader cannot show

  bool operator==(const CleaningOptions&) const = default;
};

struct CleanedWorkbook {
  ByteBuffer data;
  std::string sourceSHA256;  ///< 64 lower-case hexadecimal digits
  std::string outputSHA256;
  CleaningReport report;
};

/// Writes a new workbook with only those contents of `source` that are on the allow-list: sheets, cells with
/// their stored values, formulas and number formats, hidden rows and columns, merged areas. `WorkbookReader`
/// accepts the result. The same source and options give the same bytes.
///
/// Refuses a workbook that programs could read in two ways, or that exceeds a limit of the reader; the error
/// names the sheet. Before returning, compares source and result cell by cell with an independent reader.
///
/// Throws `DocumentError`: the errors of `BoundedZIP::read` for the archive, and others for a refused
/// workbook; validationFailed if the comparison fails, which is a defect of the cleaner, not of the document.
/// Throws `Cancelled`.
CleanedWorkbook cleanWorkbook(ByteBuffer source, std::string_view sourceName,
                              const CleaningOptions& options = {}, const std::stop_token& stop = {});

}  // namespace zelvo
