#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "DocumentRuntime/PackageIO/XMLCharacters.hpp"
#include "DocumentRuntime/Research/Workbook/SheetLimits.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using DocumentAuthor::WorkbookSheet;
using ResearchWorkbook::ReportTable;

constexpr std::size_t maximumReportCharacters = 60'000;
constexpr std::size_t maximumSources = 100;
constexpr std::size_t maximumTextCharacters = 32'000;  ///< below the 32,767 of spreadsheet programs

/// Limits of a text that is written as a number; longer ones are more often identifiers than amounts.
constexpr std::size_t maximumWholeDigits = 14;
constexpr std::size_t maximumFractionDigits = 6;

/// Widths of all columns of a sheet, in characters.
constexpr int dataWidth = 24;
constexpr int reportWidth = 112;
constexpr int sourcesWidth = 60;

bool areDigits(std::string_view text, std::size_t maximumCount) {
  return !text.empty() && text.size() <= maximumCount &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Whether the text is a decimal number with a decimal point or comma. With a leading zero, as in
/// identifiers, an exponent or a grouping it is not a number.
bool isNumber(std::string_view text) {
  if (text.starts_with('-')) text.remove_prefix(1);
  const std::size_t mark = text.find_first_of(".,");
  const std::string_view whole = text.substr(0, mark);
  if (!areDigits(whole, maximumWholeDigits) || (whole.size() > 1 && whole.front() == '0')) return false;
  return mark == std::string_view::npos || areDigits(text.substr(mark + 1), maximumFractionDigits);
}

std::string withPoint(std::string number) {
  std::ranges::replace(number, ',', '.');
  return number;
}

std::string cellText(std::string_view text) {
  // Characters that XML does not allow do not count toward the length.
  return OOXML::escaped(Unicode::prefix(OOXML::withoutForbidden(text), maximumTextCharacters));
}

enum class Numbers { written, keptAsTexts };

std::string rowsXML(const ReportTable& rows, Numbers numbers) {
  std::string xml;
  CellAddress address;
  for (const auto& row : rows) {
    OOXML::append(xml, R"(<row r=")", address.row, R"(">)");
    address.column = 1;
    for (const std::string& text : row) {
      if (numbers == Numbers::written && address.row > 1 && isNumber(text))
        DocumentAuthor::appendValueCell(xml, address, "", withPoint(text));
      else
        DocumentAuthor::appendTextCell(xml, address, "", cellText(text));
      ++address.column;
    }
    xml += "</row>";
    BoundedZIP::OutputSize::checkPart(xml.size());
    ++address.row;
  }
  return xml;
}

/// A sheet with its first row frozen.
WorkbookSheet sheet(std::string name, const ReportTable& rows, int width,
                    Numbers numbers = Numbers::keptAsTexts) {
  std::string xml;
  OOXML::append(xml, R"(<worksheet xmlns=")", DocumentAuthor::spreadsheetNamespace,
                R"("><sheetViews><sheetView workbookViewId="0"><pane ySplit="1" topLeftCell="A2" )"
                R"(activePane="bottomLeft" state="frozen"/></sheetView></sheetViews>)",
                R"(<cols><col min="1" max="24" width=")", width, R"(" customWidth="1"/></cols><sheetData>)",
                rowsXML(rows, numbers), "</sheetData></worksheet>");
  return {.name = std::move(name), .xml = std::move(xml)};
}

template <typename Texts>
ReportTable oneColumn(std::string_view heading, const Texts& texts) {
  ReportTable rows = {{std::string(heading)}};
  for (const auto& text : texts)
    rows.push_back({std::string(text)});
  return rows;
}

/// All parts. Frees the table once its sheet is written.
PartMap partsOf(ReportTable table, std::string_view title, std::string_view report,
                const std::vector<std::string>& sources) {
  DocumentAuthor::WorkbookPlan plan;
  plan.sheets.push_back(sheet("Data", std::exchange(table, {}), dataWidth, Numbers::written));
  const ReportTable lines = oneColumn(title, Unicode::lines(report));
  ResearchSheetLimits::checkRows(lines.size(), "report lines");
  plan.sheets.push_back(sheet("Report", lines, reportWidth));
  plan.sheets.push_back(sheet("Sources", oneColumn("Source URL", sources), sourcesWidth));
  return DocumentAuthor::workbookPackage(plan);
}

}  // namespace

ByteBuffer ResearchWorkbook::make(std::string_view title, std::string_view report,
                                  const std::vector<std::string>& sources, const std::stop_token& stop) {
  if (Unicode::exceeds(report, maximumReportCharacters) || sources.size() > maximumSources)
    throw DocumentError::resourceLimit("research report");
  auto table = firstTable(report);
  if (!table) {
    throw DocumentError::validationFailed(RefusalDetail::noReportTable);
  }
  return BoundedZIP::write(partsOf(*std::move(table), title, report, sources), stop);
}

}  // namespace zelvo
