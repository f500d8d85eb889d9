#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

/// Inputs and results of the engine's operations. Plain values, compared field by field, fields in the order
/// of their JSON keys. Texts are UTF-8.
namespace zelvo {

enum class DocumentFormat { docx, pptx };

struct WorksheetInspection {
  std::string name;
  bool hidden = false;
  std::optional<std::string> populatedRange;  ///< A1 notation; absent when the sheet has no cell
  std::int64_t populatedCellCount = 0;
  std::int64_t formulaCellCount = 0;
  std::int64_t formulasMissingCache = 0;
  bool hasHiddenRowsOrColumns = false;
  bool hasAutoFilter = false;

  bool operator==(const WorksheetInspection&) const = default;
};

struct WorkbookInspection {
  std::string sourceName;
  std::string sourceSHA256;  ///< 64 lower-case hexadecimal digits
  std::vector<WorksheetInspection> sheets;
  std::string dateSystem;  ///< "1900" or "1904"
  std::string calculationMode;
  std::vector<std::string> warnings;

  bool operator==(const WorkbookInspection&) const = default;
};

/// A selected range of one worksheet.
struct TableSelection {
  std::string sheetName;
  std::string range;  ///< A1 notation
  bool firstRowIsHeader = false;
  bool includeHiddenRows = false;
  bool allowCachedFormulaValues = false;

  bool operator==(const TableSelection&) const = default;
};

/// An extracted rectangle of cells.
struct SourceTable {
  std::string sourceName;
  std::string sourceSHA256;
  std::string sheetName;
  std::string selectedRange;
  std::vector<std::string> columns;  ///< the column titles
  std::vector<std::vector<SourceCell>> rows;
  std::vector<std::string> warnings;
  bool headerUsesCachedFormulaValues = false;

  /// Whether the header or any cell is the stored result of a formula.
  bool usesCachedFormulaValues() const {
    return headerUsesCachedFormulaValues || std::ranges::any_of(rows, [](const auto& row) {
             return std::ranges::any_of(row, &SourceCell::usesCachedFormulaValue);
           });
  }

  bool operator==(const SourceTable&) const = default;
};

/// A column chart over two columns of a table.
struct ChartSelection {
  std::int64_t categoryColumn = 0;  ///< zero-based
  std::int64_t valueColumn = 0;     ///< zero-based
  std::string title;

  bool operator==(const ChartSelection&) const = default;
};

struct DocumentValidation {
  bool structurallyValid = false;
  bool sourceValuesVerified = false;
  bool visuallyVerified = false;
  std::string validatorVersion;
  std::vector<std::string> warnings;
  std::string outputSHA256;

  bool operator==(const DocumentValidation&) const = default;
};

struct GeneratedDocument {
  ByteBuffer data;  ///< the DOCX or PPTX package
  DocumentFormat format = DocumentFormat::docx;
  std::string sourceSHA256;
  DocumentValidation validation;

  bool operator==(const GeneratedDocument&) const = default;
};

}  // namespace zelvo
