#include "DocumentRuntime/Research/Workbook/SheetLimits.hpp"

#include <array>
#include <string>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/CellReader.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

using Kind = ResearchSheet::Kind;

/// The limit of a URL or identifier in a message.
constexpr std::size_t maximumNameCharacters = 80;

/// The texts of a record, column by column.
constexpr std::array<std::string_view, 6> recordTexts = {"identifier",  "kind",     "label",
                                                         "observation", "coverage", "URL"};

bool fitsCell(const std::string& text) {
  return !Unicode::exceeds(text, CellReader::maximumTextCharacters);
}

std::string quoted(const std::string& name) {
  const std::string_view start = Unicode::prefix(name, maximumNameCharacters);
  return "\"" + std::string(start) + (start.size() < name.size() ? "…\"" : "\"");
}

[[noreturn]] void failTooLong(const std::string& text) {
  throw DocumentError::resourceLimit(text + " has more than " +
                                     std::to_string(CellReader::maximumTextCharacters) +
                                     " characters, too many for a cell");
}

void checkURL(const std::string& url) {
  if (!fitsCell(url)) failTooLong("the source URL " + quoted(url));
}

void checkRecord(const ResearchSheet::Row& row) {
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (!fitsCell(*row[i].text()))
      failTooLong("the " + std::string(recordTexts[i]) + " of record " + quoted(*row.front().text()));
  }
}

}  // namespace

void ResearchSheetLimits::checkRows(std::size_t rows, std::string_view what) {
  if (rows > maximumTextRows) {
    throw DocumentError::resourceLimit("too many " + std::string(what) + " for a sheet of " +
                                       std::to_string(maximumTextRows) + " rows");
  }
}

void ResearchSheetLimits::check(const ResearchWorkbookContent& content) {
  for (const auto& row : content.dataset->rows) {
    for (const std::string& url : row.sources)
      checkURL(url);
  }
  for (const ResearchSheet& sheet : content.sheets) {
    if (sheet.kind == Kind::report) checkRows(sheet.rows.size(), "report lines");
    if (sheet.kind != Kind::sources) continue;
    checkRows(sheet.rows.size(), "sources");
    for (const ResearchSheet::Row& row : sheet.rows) {
      if (content.hasScope) {
        checkRecord(row);
      } else {
        checkURL(*row.front().text());
      }
    }
  }
}

}  // namespace zelvo
