#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"
#include "DocumentRuntime/Workbook/CellStyles.hpp"
#include "DocumentRuntime/Workbook/SharedStrings.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* sharedFormula = "shared or array formula at ";
inline constexpr const char* numberFormat = "number format at ";
inline constexpr const char* cellText = "selected cell text";

}  // namespace RefusalDetail

/// Converts cells of one workbook to typed values. Refuses values that it cannot reproduce exactly. Nothing
/// is recalculated.
///
/// Keeps references: the strings and styles must outlive it.
class CellReader {
 public:
  static constexpr std::size_t maximumTextCharacters = 2'000;

  struct Options {
    bool hidden = false;              ///< the cell is in a hidden row
    bool allowCache = false;          ///< accept the stored results of formulas
    bool acceptEmptyFormula = false;  ///< accept an empty stored result too
  };

  CellReader(const SharedStrings& sharedStrings, const CellStyles& styles, bool uses1904Dates)
      : sharedStrings_(sharedStrings), styles_(styles), uses1904Dates_(uses1904Dates) {}

  /// The cell at `address`; without an element, a missing value. Throws `DocumentError`, in this order of
  /// checks: unsupported "shared or array formula at A1"; formulaValueUnavailable "A1"; invalidArchive "cell
  /// style index"; then for the cell's type invalidArchive "shared string index", "boolean value", "ISO date"
  /// or "numeric cell", unsupported "number format at A1", "Excel date at A1", "time value spans multiple
  /// days at A1" or "cell type t"; last resourceLimit "selected cell text".
  SourceCell cell(std::optional<XMLNode> element, const CellAddress& address, const Options& options) const;

 private:
  std::optional<std::string_view> formatOf(XMLNode element) const;
  SourceCellValue value(XMLNode element, std::string_view raw, std::optional<std::string_view> format,
                        const std::string& name) const;
  SourceCellValue sharedString(std::string_view raw) const;
  SourceCellValue numeric(std::string_view raw, std::optional<std::string_view> format,
                          const std::string& name) const;

  const SharedStrings& sharedStrings_;
  const CellStyles& styles_;
  bool uses1904Dates_;
};

}  // namespace zelvo
