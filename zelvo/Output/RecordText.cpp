#include "zelvo/DocumentText.hpp"

#include <vector>

#include "Text/Digest.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

constexpr std::size_t indent = 2;

std::string nameOf(DocumentFormat format) {
  return format == DocumentFormat::docx ? "Word document" : "PowerPoint presentation";
}

std::string sizeOf(ByteView document) {
  return std::to_string(document.size()) + " bytes";
}

std::string warningLines(const std::vector<std::string>& warnings) {
  std::string text = warnings.empty() ? "" : "\n";
  for (const std::string& warning : warnings)
    text += std::string(indent, ' ') + "Warning: " + printable(warning) + "\n";
  return text;
}

std::string provedOrNot(bool isProved) {
  return isProved ? "proved" : "not proved";
}

std::string chartFinding(const ValidationScope& scope) {
  if (scope.format == DocumentFormat::docx) return "not looked for: a Word document has none";
  if (!scope.expectsChart) return "proved: there is none";
  return scope.expectsTable ? "proved: it shows the columns of the expected table"
                            : "proved to agree with its own workbook; not with a table (--expect)";
}

}  // namespace

std::string describe(const GeneratedDocument& document, const SourceTable& table) {
  TextTable facts({left, left});
  facts.addRow({"Format", nameOf(document.format)});
  facts.addRow({"Size", sizeOf(document.data.view())});
  facts.addRow({"Table", std::to_string(table.rows.size()) + " rows, " +
                             std::to_string(table.columns.size()) + " columns"});
  facts.addRow({"SHA-256", document.validation.outputSHA256});
  return facts.text(indent) + warningLines(document.validation.warnings);
}

std::string describe(const std::string& format, ByteView document) {
  TextTable facts({left, left});
  facts.addRow({"Format", format});
  facts.addRow({"Size", sizeOf(document)});
  facts.addRow({"SHA-256", Digest::sha256(document)});
  return facts.text(indent);
}

std::string describe(const DocumentValidation& validation, const ValidationScope& scope) {
  TextTable findings({left, left});
  findings.addRow({"Format", nameOf(scope.format)});
  findings.addRow({"Structure", provedOrNot(validation.structurallyValid)});
  findings.addRow({"Source values", provedOrNot(validation.sourceValuesVerified) +
                                        (scope.expectsTable ? "" : ": no table was expected (--expect)")});
  findings.addRow({"Chart", chartFinding(scope)});
  findings.addRow({"Appearance", provedOrNot(validation.visuallyVerified)});
  findings.addRow({"Profile", validation.validatorVersion});
  findings.addRow({"SHA-256", validation.outputSHA256});
  return findings.text(indent) + warningLines(validation.warnings);
}

}  // namespace zelvo
