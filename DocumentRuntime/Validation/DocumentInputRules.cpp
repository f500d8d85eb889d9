#include "DocumentRuntime/Validation/DocumentInputRules.hpp"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

// The reader of workbooks has some of the same limits. They are kept separate on purpose: a table may come
// from a request, and is checked as untrusted input.
constexpr std::size_t maximumTitleCharacters = 160;
constexpr std::size_t maximumColumns = 8;
constexpr std::size_t maximumRows = 200;
constexpr std::size_t maximumColumnTitleCharacters = 120;
constexpr std::size_t maximumSourceNameCharacters = 512;
constexpr std::size_t maximumSheetNameCharacters = 64;
constexpr std::size_t maximumWarnings = 16;
constexpr std::size_t maximumWarningCharacters = 500;
constexpr std::size_t maximumTextCharacters = 2'000;
constexpr std::size_t maximumFormulaCharacters = 8'192;
constexpr std::size_t maximumFormatCharacters = 256;

constexpr std::size_t maximumChartRows = 30;
constexpr std::size_t maximumChartTitleCharacters = 160;
constexpr std::size_t maximumCategoryCharacters = 60;

constexpr std::size_t digestDigits = 64;

bool isDigest(std::string_view text) {
  return text.size() == digestDigits && text.find_first_not_of(ASCII::hexDigits) == std::string_view::npos;
}

bool isWithinBounds(const SourceTable& table, std::string_view title) {
  if (Unicode::trimmed(title).empty() || Unicode::exceeds(title, maximumTitleCharacters)) return false;
  if (table.columns.empty() || table.columns.size() > maximumColumns) return false;
  if (table.rows.empty() || table.rows.size() > maximumRows) return false;
  for (const std::string& column : table.columns) {
    if (column.empty() || Unicode::exceeds(column, maximumColumnTitleCharacters)) return false;
  }
  for (const auto& row : table.rows) {
    if (row.size() != table.columns.size()) return false;
  }
  // A name without a path: a path would disclose the user's folders to readers of the document.
  if (Unicode::exceeds(table.sourceName, maximumSourceNameCharacters) ||
      table.sourceName.find_first_of("/\\") != std::string::npos) {
    return false;
  }
  if (!isDigest(table.sourceSHA256)) return false;
  if (Unicode::exceeds(table.sheetName, maximumSheetNameCharacters)) return false;
  return table.warnings.size() <= maximumWarnings &&
         std::ranges::none_of(table.warnings, [](const std::string& warning) {
           return Unicode::exceeds(warning, maximumWarningCharacters);
         });
}

bool isTextWithinBounds(const SourceCell& cell) {
  return !Unicode::exceeds(cell.value.displayText(), maximumTextCharacters) &&
         !(cell.formula && Unicode::exceeds(*cell.formula, maximumFormulaCharacters)) &&
         !(cell.numberFormat && Unicode::exceeds(*cell.numberFormat, maximumFormatCharacters));
}

bool isUnderstood(std::string_view format) {
  return format == "General" || format == "@" || DocumentNumberFormat::numeric(format) ||
         DocumentNumberFormat::isDate(format) || DocumentNumberFormat::isTime(format);
}

bool isPublishableNumber(const SourceCell& cell) {
  return NumberText::isValid(cell.value.payload()) &&
         (!cell.numberFormat || isUnderstood(*cell.numberFormat));
}

bool isNumber(const SourceCell& cell) {
  return cell.value.kind() == SourceCellValue::Kind::number;
}

bool isChartableRow(const std::vector<SourceCell>& row, std::size_t category, std::size_t value) {
  if (row.size() <= std::max(category, value)) return false;
  const std::string label = row[category].displayText();
  return !label.empty() && !Unicode::exceeds(label, maximumCategoryCharacters) && isNumber(row[value]) &&
         NumberText::isValid(row[value].value.payload());
}

/// The addresses of a table's cells so far, sorted. Tables list them in ascending order, so the search and
/// the move of an insertion are rare.
class SeenAddresses {
 public:
  bool insert(const CellAddress& address) {
    if (addresses_.empty() || addresses_.back() < address) {
      addresses_.push_back(address);
      return true;
    }
    const auto place = std::ranges::lower_bound(addresses_, address);
    if (*place == address) return false;
    addresses_.insert(place, address);
    return true;
  }

 private:
  std::vector<CellAddress> addresses_;
};

}  // namespace

void DocumentInputRules::checkTable(const SourceTable& table, std::string_view title) {
  if (!isWithinBounds(table, title)) throw DocumentError::invalidSelection(RefusalDetail::tableBounds);

  const CellRange range = CellRange::parse(table.selectedRange);
  SeenAddresses seen;
  for (const auto& row : table.rows) {
    for (const SourceCell& cell : row) {
      const CellAddress address = CellAddress::parse(cell.address);
      if (!range.contains(address) || !seen.insert(address) || !isTextWithinBounds(cell)) {
        throw DocumentError::invalidSelection("cell lineage or bounds");
      }
      if (isNumber(cell) && !isPublishableNumber(cell)) {
        throw DocumentError::invalidSelection("numeric value or unsupported format");
      }
      // Only the workbook's stored result of a formula may be published.
      if (cell.formula && !cell.usesCachedFormulaValue)
        throw DocumentError::formulaValueUnavailable(cell.address);
    }
  }
}

void DocumentInputRules::checkChart(const ChartSelection& selection, const SourceTable& table) {
  const auto isColumn = [&](std::int64_t index) {
    return index >= 0 && std::cmp_less(index, table.columns.size());
  };
  if (!isColumn(selection.categoryColumn) || !isColumn(selection.valueColumn) ||
      selection.categoryColumn == selection.valueColumn || table.rows.size() > maximumChartRows ||
      Unicode::exceeds(selection.title, maximumChartTitleCharacters)) {
    throw DocumentError::invalidSelection(RefusalDetail::chartShape);
  }
  const auto category = static_cast<std::size_t>(selection.categoryColumn);
  const auto value = static_cast<std::size_t>(selection.valueColumn);
  std::set<std::string> formats;
  for (const auto& row : table.rows) {
    if (!isChartableRow(row, category, value)) {
      throw DocumentError::invalidSelection(RefusalDetail::chartValues);
    }
    formats.insert(row[value].numberFormat.value_or("General"));
  }
  if (formats.size() != 1) throw DocumentError::invalidSelection(RefusalDetail::chartUnits);
}

}  // namespace zelvo
