#include "zelvo/InspectionText.hpp"

#include "zelvo/TerminalText.hpp"
#include "zelvo/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

constexpr std::size_t indent = 2;

std::string yesOrNo(bool value) {
  return value ? "yes" : "no";
}

std::string sheetTable(const WorkbookInspection& inspection) {
  TextTable table({left, left, left, right, right, right, left, left});
  table.addRow({"Sheet", "Visibility", "Range", "Cells", "Formulas", "Without result",
                "Hidden rows or columns", "Filter"});
  for (const WorksheetInspection& sheet : inspection.sheets) {
    table.addRow({sheet.name, sheet.hidden ? "hidden" : "visible", sheet.populatedRange.value_or("-"),
                  std::to_string(sheet.populatedCellCount), std::to_string(sheet.formulaCellCount),
                  std::to_string(sheet.formulasMissingCache), yesOrNo(sheet.hasHiddenRowsOrColumns),
                  yesOrNo(sheet.hasAutoFilter)});
  }
  return table.text(indent);
}

std::string factTable(const WorkbookInspection& inspection) {
  TextTable table({left, left});
  table.addRow({"Date system", inspection.dateSystem});
  table.addRow({"Calculation mode", inspection.calculationMode});
  table.addRow({"SHA-256", inspection.sourceSHA256});
  return table.text(indent);
}

}  // namespace

std::string describe(const WorkbookInspection& inspection) {
  std::string text = sheetTable(inspection) + "\n" + factTable(inspection) + "\n";
  for (const std::string& warning : inspection.warnings) {
    text += std::string(indent, ' ') + "Warning: " + printable(warning) + "\n";
  }
  return text;
}

}  // namespace zelvo
