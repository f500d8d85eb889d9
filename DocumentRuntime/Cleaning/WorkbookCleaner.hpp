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
  bool unmerge = false;       ///< removes merged areas, and touches no cell
  bool plainFormats = false;  ///< replaces number formats that the workbook reader cannot show

  bool operator==(const CleaningOptions&) const = default;
};

struct CleanedWorkbook {
  ByteBuffer data;
  std::string sourceSHA256;  ///< 64 lower-case hexadecimal digits
  std::string outputSHA256;
  CleaningReport report;
};

/// Writes a new workbook that holds only what was understood of `source`: sheets, cells with their stored
/// values, formulas and number formats, hidden rows and columns, merged areas. `WorkbookReader` accepts it.
/// The same source and options give the same bytes.
///
/// What could be read in two ways is refused, and so is what passes a limit of the reader, with the sheet.
/// Before it returns, a second reader compares source and result cell by cell.
///
/// Throws `DocumentError`: the errors of `BoundedZIP::read` for the archive, others for what is refused;
/// validationFailed where the comparison fails, which is a defect of the cleaner and none of the document.
/// And `Cancelled`.
CleanedWorkbook cleanWorkbook(ByteBuffer source, std::string_view sourceName,
                              const CleaningOptions& options = {}, const std::stop_token& stop = {});

}  // namespace zelvo
