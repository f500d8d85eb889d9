#include "zelvo/Output/RecordText.hpp"

#include "Text/Digest.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

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
  return table.text();
}

std::string factTable(const WorkbookInspection& inspection) {
  TextTable table({left, left});
  table.addRow({"Date system", inspection.dateSystem});
  table.addRow({"Calculation mode", inspection.calculationMode});
  table.addRow({"SHA-256", inspection.sourceSHA256});
  return table.text();
}

std::string nameOf(DocumentFormat format) {
  return format == DocumentFormat::docx ? "Word document" : "PowerPoint presentation";
}

std::string sizeOf(ByteView document) {
  return std::to_string(document.size()) + " bytes";
}

std::string verifiedOrNot(bool isVerified) {
  return isVerified ? "verified" : "not verified";
}

std::string chartFinding(const ValidationScope& scope) {
  if (scope.format == DocumentFormat::docx) return "not checked: a Word document has none";
  if (!scope.expectsChart) return "verified: there is none";
  return scope.expectsTable ? "verified: it shows the columns of the expected table"
                            : "verified against its own workbook, but not against a table (--expect)";
}

}  // namespace

std::string describe(const WorkbookInspection& inspection, const std::string& notes) {
  return sheetTable(inspection) + "\n" + factTable(inspection) + notes + warningLines(inspection.warnings);
}

std::string describe(const GeneratedDocument& document, const SourceTable& table, const std::string& notes) {
  TextTable facts({left, left});
  facts.addRow({"Format", nameOf(document.format)});
  facts.addRow({"Size", sizeOf(document.data.view())});
  facts.addRow({"Table", std::to_string(table.rows.size()) + " rows, " +
                             std::to_string(table.columns.size()) + " columns"});
  facts.addRow({"SHA-256", document.validation.outputSHA256});
  return facts.text() + notes + warningLines(document.validation.warnings);
}

std::string describe(const std::string& format, ByteView document) {
  TextTable facts({left, left});
  facts.addRow({"Format", format});
  facts.addRow({"Size", sizeOf(document)});
  facts.addRow({"SHA-256", Digest::sha256(document)});
  return facts.text();
}

std::string describe(const DocumentValidation& validation, const ValidationScope& scope) {
  TextTable findings({left, left});
  findings.addRow({"Format", nameOf(scope.format)});
  findings.addRow({"Structure", verifiedOrNot(validation.structurallyValid)});
  findings.addRow({"Source values", verifiedOrNot(validation.sourceValuesVerified) +
                                        (scope.expectsTable ? "" : ": no table was expected (--expect)")});
  findings.addRow({"Chart", chartFinding(scope)});
  findings.addRow({"Appearance", verifiedOrNot(validation.visuallyVerified)});
  findings.addRow({"Profile", validation.validatorVersion});
  findings.addRow({"SHA-256", validation.outputSHA256});
  return findings.text() + warningLines(validation.warnings);
}

}  // namespace zelvo
