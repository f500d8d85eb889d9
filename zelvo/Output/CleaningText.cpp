#include "zelvo/Output/CleaningText.hpp"

#include "zelvo/Output/TerminalText.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

using enum TextTable::Align;

std::string orNothing(const std::string& text) {
  return text.empty() ? "nothing" : text;
}

}  // namespace

std::string cleaningNotes(const CleaningRecord& cleaning) {
  std::string notes = "\n" + indentedLine("Cleaned from SHA-256 " + printable(cleaning.sourceSHA256) +
                                          " to " + printable(cleaning.outputSHA256));
  notes += indentedLine("Left out: " + orNothing(printable(droppedInWords(cleaning.report))));
  const std::string changed = changedInWords(cleaning.report);
  if (!changed.empty()) notes += indentedLine("Changed: " + printable(changed));
  return notes;
}

std::string describe(const CleaningRecord& cleaning, ByteView document) {
  TextTable facts({left, left});
  facts.addRow({"Format", "Excel workbook"});
  facts.addRow({"Size", std::to_string(document.size()) + " bytes"});
  facts.addRow({"Sheets", std::to_string(cleaning.report.sheets.size())});
  facts.addRow({"SHA-256", cleaning.outputSHA256});
  return facts.text() + cleaningNotes(cleaning);
}

}  // namespace zelvo
