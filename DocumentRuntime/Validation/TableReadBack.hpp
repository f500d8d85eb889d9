#pragma once

#include <cstddef>
#include <optional>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/XMLContents.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* tableDiffers = "table cells differ from frozen source values";
inline constexpr const char* tableDimensions = "table dimensions";

}  // namespace RefusalDetail

/// A row of a Word or presentation table: its `tc` children. A cell's text is that of all `t` elements at any
/// depth below it, joined. `t` elements may nest: the text of an inner one is then part of both.
struct TableRow {
  XMLNode element;
  const XMLContents& contents;  ///< of the tree
};

/// Whether two rows have the same number of cells, with equal texts.
bool showSameTexts(const TableRow& a, const TableRow& b);

/// Checks the table of a document row by row, the header first, while its parts are read. Stores counts and a
/// result, no rows.
class TableReadBack {
 public:
  /// `expected` may be null, and must outlive this.
  explicit TableReadBack(const SourceTable* expected);

  void add(const TableRow& row);

  /// Checks the whole table. Throws `DocumentError`: validationFailed "table dimensions" unless there are 1
  /// to 201 rows of 1 to 8 cells, with the same number in all rows; with an expected table what the input
  /// rules throw for it, then validationFailed "table cells differ from frozen source values" unless the rows
  /// are exactly its titles and display texts.
  void check() const;

 private:
  bool isExpected(const TableRow& row) const;

  const SourceTable* expected_;
  std::optional<DocumentError> refusal_;  ///< of the expected table by the input rules
  std::size_t rowCount_ = 0;
  std::size_t columnCount_ = 0;  ///< of the first row
  bool isRagged_ = false;
  bool matches_;  ///< all rows so far are the expected ones
};

}  // namespace zelvo
