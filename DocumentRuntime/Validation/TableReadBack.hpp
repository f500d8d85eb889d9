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

/// A row of a table in either vocabulary: its `tc` children. A cell's text is that of all `t` elements at any
/// depth below it, joined. `t` elements may nest: the text of the inner one then counts for each.
struct TableRow {
  XMLNode element;
  const XMLContents& contents;  ///< of the tree
};

/// Whether two rows have as many cells, and equal texts in all of them.
bool showSameTexts(const TableRow& a, const TableRow& b);

/// Checks the table of a document row by row, the header first, as its parts are read. Keeps counts and a
/// result, and no rows.
class TableReadBack {
 public:
  /// `expected` may be null, and must outlive this.
  explicit TableReadBack(const SourceTable* expected);

  void add(const TableRow& row);

  /// Checks the whole table. Throws `DocumentError`: validationFailed "table dimensions" unless there are 1
  /// to 201 rows of 1 to 8 cells, all as many; with an expected table what the input rules throw for it, then
  /// validationFailed "table cells differ from frozen source values" unless the rows are exactly its titles
  /// and display texts.
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
