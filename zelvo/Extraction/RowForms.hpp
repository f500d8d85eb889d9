#pragma once

#include <memory>
#include <string>
#include <vector>

#include "DocumentRuntime/Records/SourceCell.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Extraction/SheetRows.hpp"

namespace zelvo {

/// The cell's text: displayed or stored, with formulas escaped if the options say so.
std::string cellText(const SourceCell& cell, const CellTextOptions& options);

/// Writes rows, one after the other, as text of one form.
class RowWriter {
 public:
  RowWriter() = default;
  RowWriter(const RowWriter&) = delete;
  RowWriter& operator=(const RowWriter&) = delete;
  virtual ~RowWriter() = default;

  /// The next row as lines with their line feeds; empty if it has none of its own. It has a cell for each
  /// column.
  virtual std::string lines(const std::vector<SourceCell>& cells) = 0;
};

/// The writer of a form other than `json` and `text`, for these rows, which must outlive it:
///
/// - `csv` (RFC 4180, lines end with a line feed) and `tsv` (with \t, \n, \r and \\ as escapes): every row;
/// - `markdown`: a pipe table, whose header is empty if the rows have none. | is written \|, line breaks
/// <br>.
/// - `jsonl`: an object for each data row, with the stored values: a number whose text is JSON as that text,
///   any other as its shortest double; a blank cell as null; an error as {"error": "#N/A"}. Keys are the
///   titles; the column's letters where the title is blank; with the letters as " (C)" where it is repeated.
///
/// `isForTerminal`: control characters in cells are escaped; for `jsonl` the caller escapes them.
std::unique_ptr<RowWriter> rowWriter(ExtractArguments::Form form, const SheetRows& rows,
                                     const CellTextOptions& options, bool isForTerminal);

}  // namespace zelvo
