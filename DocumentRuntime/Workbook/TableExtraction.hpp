#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <stop_token>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Workbook/CellReader.hpp"

namespace zelvo {

/// Cuts one range out of one worksheet.
class TableExtraction {
 public:
  static constexpr std::int64_t maximumColumns = 8;
  /// The header included; the same with or without one, so that a table without a header may have 201 data
  /// rows.
  static constexpr std::int64_t maximumRows = 201;
  static constexpr std::size_t maximumHeaderCharacters = 120;
  /// The detail of the error about a range beyond these. Hosts recognise it.
  static constexpr const char* selectionTooLarge = "select at most eight columns and 200 data rows";

  /// Parses and bounds the selection's range. Throws the errors of `CellRange::parse`, and `DocumentError`
  /// resourceLimit `selectionTooLarge`.
  static CellRange selectedRange(const TableSelection& selection);

  /// Reads columns, rows and warnings of `range` into a table; source, sheet and range are the caller's to
  /// fill in. An address in `acceptedEmptyFormulaCells` may hold a formula with an empty stored result.
  /// Throws `DocumentError`, in this order of checks: unsupported "merged cells in the selected table";
  /// invalidSelection "the selection includes hidden columns"; the errors of `CellReader::cell` for the first
  /// cell that fails, row by row, left to right, or `ResponseTooLarge` at the cell with which the texts
  /// exceed 40 MiB; invalidSelection "no visible rows", "header row is hidden", "headers must be nonempty and
  /// at most 120 characters" or "no data rows". `Cancelled` is looked at once per row.
  static SourceTable read(XMLNode worksheet, const CellRange& range, const TableSelection& selection,
                          const CellReader& reader, const std::set<CellAddress>& acceptedEmptyFormulaCells,
                          const std::stop_token& stop);
};

}  // namespace zelvo
