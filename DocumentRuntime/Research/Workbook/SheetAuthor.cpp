#include "DocumentRuntime/Research/Workbook/SheetAuthor.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "DocumentRuntime/Authoring/WorkbookPackage.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Cell = ResearchSpreadsheet::Cell;
using ColumnKind = ResearchSpreadsheet::Column::Kind;
using Kind = ResearchSheet::Kind;

// Column widths, in characters of the default font.
constexpr std::size_t numberColumnWidth = 22;
constexpr std::size_t otherColumnWidth = 28;
constexpr std::size_t provenanceColumnWidth = 48;
constexpr std::size_t readingColumnWidth = 112;
constexpr std::array<std::size_t, 6> recordColumnWidths = {46, 28, 28, 28, 54, 100};

// Row heights, in points.
constexpr std::size_t headingHeight = 32;
constexpr std::size_t dataRowHeight = 38;
constexpr std::size_t readingRowHeight = 24;
constexpr std::size_t lineHeight = 16;
constexpr std::size_t readingLineLength = 100;  ///< estimated characters of a line of prose
constexpr std::size_t mostReadingGrowth = 156;  ///< limit of the height that long prose adds to its row
constexpr std::size_t recordRowPadding = 12;
constexpr std::size_t minimumRecordHeight = 32;
constexpr std::size_t maximumRecordHeight = 409;  ///< the limit of spreadsheet programs
constexpr std::size_t columnPadding = 2;          ///< characters of a width that text cannot use

bool isRecordSheet(const ResearchSheet& sheet, const ResearchWorkbookContent& content) {
  return sheet.kind == Kind::sources && content.hasScope;
}

std::vector<std::size_t> columnWidths(const ResearchSheet& sheet, const ResearchWorkbookContent& content) {
  if (isRecordSheet(sheet, content)) return {recordColumnWidths.begin(), recordColumnWidths.end()};
  if (sheet.kind != Kind::data) return {readingColumnWidth};
  std::vector<std::size_t> widths;
  for (const auto& column : content.dataset->columns)
    widths.push_back(column.kind == ColumnKind::number ? numberColumnWidth : otherColumnWidth);
  widths.push_back(provenanceColumnWidth);
  return widths;
}

void appendColumns(std::string& xml, const std::vector<std::size_t>& widths) {
  xml += "<cols>";
  for (std::size_t i = 0; i < widths.size(); ++i) {
    OOXML::append(xml, R"(<col min=")", i + 1, R"(" max=")", i + 1, R"(" width=")", widths[i],
                  R"(" customWidth="1"/>)");
  }
  xml += "</cols>";
}

/// The number of lines of a text in a column, wrapped at its width.
std::size_t wrappedLines(std::string_view text, std::size_t columnWidth) {
  const std::size_t perLine = columnWidth - columnPadding;  // all widths are larger
  std::size_t total = 0;
  for (const std::string_view line : Unicode::lines(text))
    total += std::max<std::size_t>(1, (Unicode::characterCount(line) + perLine - 1) / perLine);
  return total;
}

std::size_t recordRowHeight(const ResearchSheet::Row& row) {
  std::size_t lines = 1;
  for (std::size_t i = 0; i < row.size(); ++i)
    lines = std::max(lines, wrappedLines(row[i].displayText(), recordColumnWidths[i]));
  return std::clamp(lines * lineHeight + recordRowPadding, minimumRecordHeight, maximumRecordHeight);
}

std::size_t readingHeight(const ResearchSheet::Row& row) {
  if (row.empty()) return readingRowHeight;
  const std::size_t length = Unicode::characterCount(row.front().displayText());
  return std::min(length / readingLineLength * lineHeight, mostReadingGrowth) + readingRowHeight;
}

/// Writes the cells of one sheet. The content must outlive it.
class CellWriter {
 public:
  CellWriter(const ResearchSheet& sheet, const ResearchWorkbookContent& content)
      : sheet_(sheet), content_(content) {}

  void append(std::string& xml, std::size_t row, std::size_t column) const {
    const Cell& cell = sheet_.rows[row][column];
    const CellAddress address{.column = static_cast<std::int64_t>(column) + 1,
                              .row = static_cast<std::int64_t>(row) + 1};
    if (const ResolvedCalculation* calculation = calculationAt(address)) {
      appendFormula(xml, address, *calculation);
    } else if (const std::string* text = cell.text()) {
      appendText(xml, address, *text);
    } else if (cell.number()) {
      DocumentAuthor::appendValueCell(xml, address, R"( s="2")", cell.displayText());
    } else {
      OOXML::append(xml, R"(<c r=")", address.name(), R"(" s="0"/>)");
    }
  }

 private:
  const ResolvedCalculation* calculationAt(const CellAddress& address) const {
    if (sheet_.kind != Kind::data) return nullptr;
    const auto found = content_.calculations.find(address);
    return found == content_.calculations.end() ? nullptr : &found->second;
  }

  static void appendFormula(std::string& xml, const CellAddress& address,
                            const ResolvedCalculation& calculation) {
    OOXML::append(xml, R"(<c r=")", address.name(), R"(" s="2")",
                  calculation.value ? "><f>" : R"( t="str"><f>)", OOXML::escaped(calculation.formula),
                  "</f><v>", calculation.value ? DoubleText::shortest(*calculation.value) : std::string(),
                  "</v></c>");
  }

  void appendText(std::string& xml, const CellAddress& address, const std::string& text) const {
    const std::string escaped = OOXML::escaped(text);
    if (isDate(address)) {
      // Only the stylesheet for scopes has a style for dates.
      DocumentAuthor::appendValueCell(xml, address, content_.hasScope ? R"( s="3" t="d")" : R"( t="d")",
                                      escaped);
    } else {
      DocumentAuthor::appendTextCell(xml, address, address.row == 1 ? R"( s="1")" : R"( s="0")", escaped);
    }
  }

  bool isDate(const CellAddress& address) const {
    const auto column = static_cast<std::size_t>(address.column - 1);
    const auto& columns = content_.dataset->columns;
    return sheet_.kind == Kind::data && address.row > 1 && column < columns.size() &&
           columns[column].kind == ColumnKind::date;
  }

  const ResearchSheet& sheet_;
  const ResearchWorkbookContent& content_;
};

std::size_t rowHeight(const ResearchSheet& sheet, const ResearchWorkbookContent& content, std::size_t row) {
  if (row == 0) return headingHeight;
  if (sheet.kind == Kind::data) return dataRowHeight;
  return isRecordSheet(sheet, content) ? recordRowHeight(sheet.rows[row]) : readingHeight(sheet.rows[row]);
}

std::string_view tail(Kind kind) {
  switch (kind) {
    case Kind::overview:
      return R"(<drawing r:id="rIdDrawing"/>)";
    case Kind::data:
      return R"(<tableParts count="1"><tablePart r:id="rIdTable"/></tableParts>)";
    default:
      return {};
  }
}

constexpr std::string_view dateNumberFormat =
    R"(<numFmts count="1"><numFmt numFmtId="164" formatCode="yyyy-mm-dd"/></numFmts>)";
constexpr std::string_view fontsFillsAndBorders =
    R"(<fonts count="2"><font><sz val="11"/><name val="Aptos"/></font>)"
    R"(<font><b/><sz val="11"/><color rgb="FFFFFFFF"/><name val="Aptos"/></font></fonts>)"
    R"(<fills count="3"><fill><patternFill patternType="none"/></fill>)"
    R"(<fill><patternFill patternType="gray125"/></fill>)"
    R"(<fill><patternFill patternType="solid"><fgColor rgb="FF334E68"/><bgColor indexed="64"/></patternFill></fill></fills>)"
    R"(<borders count="1"><border><left/><right/><top/><bottom/><diagonal/></border></borders>)"
    R"(<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>)";
constexpr std::string_view textHeadingAndNumber =
    R"(<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0" applyAlignment="1">)"
    R"(<alignment vertical="top" wrapText="1"/></xf>)"
    R"(<xf numFmtId="0" fontId="1" fillId="2" borderId="0" xfId="0" applyFont="1" applyFill="1" applyAlignment="1">)"
    R"(<alignment vertical="center" wrapText="1"/></xf>)"
    R"(<xf numFmtId="4" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" applyAlignment="1">)"
    R"(<alignment vertical="top"/></xf>)";
constexpr std::string_view date =
    R"(<xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" applyAlignment="1">)"
    R"(<alignment vertical="top"/></xf>)";
constexpr std::string_view namedStyles =
    R"(<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles></styleSheet>)";

}  // namespace

std::string researchWorksheetXML(const ResearchSheet& sheet, const ResearchWorkbookContent& content) {
  std::string xml;
  OOXML::append(xml, R"(<worksheet xmlns=")", DocumentAuthor::spreadsheetNamespace,
                R"(" xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">)",
                R"(<sheetViews><sheetView workbookViewId="0" showGridLines="0">)",
                sheet.kind == Kind::data
                    ? R"(<pane ySplit="1" topLeftCell="A2" activePane="bottomLeft" state="frozen"/>)"
                    : "",
                R"(</sheetView></sheetViews><sheetFormatPr defaultRowHeight="20"/>)");
  appendColumns(xml, columnWidths(sheet, content));
  xml += "<sheetData>";
  const CellWriter cells(sheet, content);
  for (std::size_t row = 0; row < sheet.rows.size(); ++row) {
    OOXML::append(xml, R"(<row r=")", row + 1, R"(" ht=")", rowHeight(sheet, content, row),
                  R"(" customHeight="1">)");
    for (std::size_t column = 0; column < sheet.rows[row].size(); ++column)
      cells.append(xml, row, column);
    xml += "</row>";
    BoundedZIP::OutputSize::checkPart(xml.size());
  }
  OOXML::append(xml, "</sheetData>", tail(sheet.kind), "</worksheet>");
  return xml;
}

std::string researchStylesXML(bool withDates) {
  const std::string_view none;
  std::string xml;
  OOXML::append(xml, R"(<styleSheet xmlns=")", DocumentAuthor::spreadsheetNamespace, R"(">)",
                withDates ? dateNumberFormat : none, fontsFillsAndBorders, R"(<cellXfs count=")",
                withDates ? 4 : 3, R"(">)", textHeadingAndNumber, withDates ? date : none, "</cellXfs>",
                namedStyles);
  return xml;
}

}  // namespace zelvo
