#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/KeptTrees.hpp"
#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "DocumentRuntime/Workbook/CellStyles.hpp"
#include "DocumentRuntime/Workbook/Deferred.hpp"
#include "DocumentRuntime/Workbook/SharedStrings.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"
#include "DocumentRuntime/Workbook/WorksheetContents.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace Refusal {

inline constexpr const char* workbookStructure = "XLSX workbook structure";
inline constexpr const char* unknownSheet = "unknown or hidden worksheet";
inline constexpr const char* worksheetType = "worksheet type";

}  // namespace Refusal

/// A vetted XLSX workbook (Transitional SpreadsheetML). Owns its data.
///
/// Every part is parsed once, while the package is vetted. The facts of each sheet, or its error, are kept
/// until that sheet is requested.
class WorkbookReader {
 private:
  struct WorksheetPart {
    std::string name;
    Deferred<WorksheetFacts> facts;
  };

 public:
  static constexpr std::size_t maximumSourceNameBytes = 512;

  /// Opens and vets the workbook; `data` is freed as soon as its entries are expanded. Throws
  /// `DocumentError`: resourceLimit "source name", "worksheet count" or "shared strings"; unsupported "XLSX
  /// workbook structure" or "only Transitional XLSX is supported"; invalidArchive "worksheet identity" or
  /// "number format"; what the package gate throws; and `Cancelled`. A worksheet
  /// whose tree does not fit in the cache of `keptTreeBytes` is parsed again when a table is read from it.
  WorkbookReader(ByteBuffer data, std::string_view sourceName, const std::stop_token& stop = {},
                 std::size_t keptTreeBytes = OOXML::KeptTrees::defaultBudgetBytes);

  /// The same for bytes that the caller owns.
  WorkbookReader(ByteView data, std::string_view sourceName, const std::stop_token& stop = {});

  /// The last path component of the name that the caller gave.
  const std::string& sourceName() const { return sourceName_; }
  const std::string& sourceSHA256() const { return sourceSHA256_; }
  bool uses1904Dates() const { return uses1904Dates_; }
  const std::string& calculationMode() const { return calculationMode_; }
  const std::vector<Sheet>& sheets() const { return sheets_; }

  /// Describes every sheet. Throws the error of the first sheet that has one: invalidArchive "missing
  /// worksheet", unsupported "worksheet type", or what walking a worksheet throws.
  WorkbookInspection inspection() const;

  /// One visible sheet, walked once for any number of tables. The reader must outlive it.
  class Worksheet {
   public:
    const WorksheetFacts& facts() const { return facts_; }
    const WorksheetContents& contents() const { return contents_; }

    /// As `WorkbookReader::table`, of this sheet: `selection.sheetName` is not used. Time does not depend on
    /// the cells outside the range.
    SourceTable table(const TableSelection& selection,
                      const std::set<CellAddress>& acceptedEmptyFormulaCells = {},
                      const std::stop_token& stop = {}) const;

   private:
    friend class WorkbookReader;
    Worksheet(const WorkbookReader& workbook, const Sheet& sheet, const CellRange& area);

    SourceTable table(const CellRange& range, const TableSelection& selection,
                      const std::set<CellAddress>& acceptedEmptyFormulaCells,
                      const std::stop_token& stop) const;

    const WorkbookReader& workbook_;
    const Sheet& sheet_;
    const WorksheetPart& part_;
    const WorksheetFacts& facts_;
    std::optional<XMLTree> fallback_;  ///< the tree of a part that is not kept
    WorksheetContents contents_;
  };

  /// Opens a sheet for many tables. Throws invalidSelection "unknown or hidden worksheet" and the error of
  /// the sheet.
  Worksheet worksheet(std::string_view name) const;

  /// Extracts the selected range from one visible sheet. A cell whose address is in
  /// `acceptedEmptyFormulaCells` may hold a formula with an empty stored result. Throws invalidSelection
  /// "unknown or hidden worksheet", then what `TableExtraction::selectedRange`, the sheet itself (as above)
  /// and `TableExtraction::read` throw, and `Cancelled`.
  SourceTable table(const TableSelection& selection,
                    const std::set<CellAddress>& acceptedEmptyFormulaCells = {},
                    const std::stop_token& stop = {}) const;

 private:
  struct PassedParts;

  void identify(ByteView data, std::string_view sourceName);
  void open(PartMap parts, const std::stop_token& stop, std::size_t keptTreeBytes);
  PassedParts vetParts(PartMap parts, const std::stop_token& stop, std::size_t keptTreeBytes);
  /// Throws "unknown or hidden worksheet".
  const Sheet& visibleSheet(std::string_view name) const;
  /// Throws "missing worksheet" or "worksheet type".
  const WorksheetPart& partOf(const Sheet& sheet) const;

  std::string sourceName_;
  std::string sourceSHA256_;
  bool uses1904Dates_ = false;
  std::string calculationMode_;
  std::vector<Sheet> sheets_;
  SharedStrings sharedStrings_;
  CellStyles styles_;
  PartMap parts_;
  OOXML::KeptTrees worksheetTrees_;
  std::vector<WorksheetPart> worksheets_;  ///< every part whose root is a worksheet, sorted by name
};

}  // namespace zelvo
