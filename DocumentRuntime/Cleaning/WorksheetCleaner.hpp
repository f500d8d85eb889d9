#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cells/IdentityCheck.hpp"
#include "DocumentRuntime/Cleaning/ElementReader.hpp"
#include "DocumentRuntime/Cleaning/FormulaUses.hpp"
#include "DocumentRuntime/Cleaning/PartWriter.hpp"
#include "DocumentRuntime/Cleaning/PlainFormats.hpp"
#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"

namespace zelvo::Cleaning {

/// Writes one worksheet part. One object per sheet.
class WorksheetCleaner {
 public:
  struct Tools {
    Findings& findings;
    PartWriter& writer;
    FormulaUsesReader& formulaUses;
    PlainFormats& plainFormats;
    bool removesMerges;
    const std::stop_token& stop;
  };

  WorksheetCleaner(std::string_view sheetName, Tools tools)
      : place_(RefusalDetail::sheetPlace + std::string(sheetName)), tools_(tools) {}

  /// Throws `DocumentError` for content that cannot be written unambiguously, with the cell and the sheet,
  /// and for an exceeded limit, with the sheet. Throws `Cancelled` (checked once per row).
  void write(XMLNode root);

 private:
  struct Master {
    CellAddress address;
    std::string formula;
    FormulaUses uses;
  };

  void writeColumns(const std::vector<XMLNode>& lists);
  void writeColumn(const NamespaceScope& column, bool& isStarted);
  void readMerges(const NamespaceScope& mergeCells);
  void writeRows(const NamespaceScope& sheetData);
  void writeRow(const NamespaceScope& row);
  void writeCell(const NamespaceScope& cell, const KeptAttributes& row, bool& isRowStarted);
  void startRow(const KeptAttributes& row);
  CellAddress position(const KeptAttributes& cell);
  void writeFormula(const NamespaceScope& formula);
  void writeSharedFormula(const KeptAttributes& formula, std::string_view text);
  void writePlainFormula(std::string_view text, const FormulaUses& uses);
  void countUses(const FormulaUses& uses);
  void writeMerges();

  template <typename Take>
  void eachChild(const NamespaceScope& element, Tag tag, const Take& take);
  void checkChildren(const NamespaceScope& element, Tag tag);
  /// The location of the current element, for errors.
  std::string place() const;

  std::string place_;
  Tools tools_;
  OOXML::Namespace main_ = OOXML::Namespace::main;
  std::optional<NamespaceScope> root_;
  IdentityCheck identities_;
  std::int64_t row_ = 0;                    ///< being read; 0 before the first
  std::int64_t column_ = 0;                 ///< of the cell being read; 0 before a row's first
  std::map<std::int64_t, Master> masters_;  ///< of shared formulas, by their index
  std::string scratch_;
  std::vector<CellRange> merges_;
  std::vector<CellAddress> cells_;  ///< that were written, where merges are to be removed
};

}  // namespace zelvo::Cleaning
