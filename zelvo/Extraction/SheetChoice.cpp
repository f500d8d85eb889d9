#include "zelvo/Extraction/SheetChoice.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Text/ASCII.hpp"

namespace zelvo {
namespace {

using Sheets = std::vector<WorksheetInspection>;

/// A number of decimal digits, after a "#" or not. Nullopt for other texts; a number that is too large is one
/// that no sheet has.
std::optional<std::size_t> numberIn(std::string_view text) {
  ASCII::takePrefix(text, "#");
  if (text.empty() || !std::ranges::all_of(text, ASCII::isDigit)) return std::nullopt;
  std::size_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? number : 0;
}

const WorksheetInspection* sheetNamed(const Sheets& sheets, const std::string& given) {
  const auto number = numberIn(given);
  const bool isNumberOnly = number && given.starts_with('#');
  const auto named = std::ranges::find(sheets, given, &WorksheetInspection::name);
  if (!isNumberOnly && named != sheets.end()) return &*named;
  return number && 1 <= *number && *number <= sheets.size() ? &sheets[*number - 1] : nullptr;
}

constexpr const char* noVisibleSheet = "The workbook has no visible sheet.";
constexpr const char* severalVisibleSheets =
    "The workbook has several visible sheets: choose one with --sheet.";

CommandError refusal(std::string message) {
  return {ExitStatus::refused, std::move(message)};
}

Result<const WorksheetInspection*> chosenSheet(const Sheets& sheets, const std::string& given) {
  if (!given.empty()) {
    const WorksheetInspection* sheet = sheetNamed(sheets, given);
    if (sheet != nullptr && !sheet->hidden) return sheet;
    return refusal(DocumentError::invalidSelection(RefusalDetail::unknownSheet).errorDescription());
  }
  const auto visible = std::ranges::find(sheets, false, &WorksheetInspection::hidden);
  if (visible == sheets.end()) return refusal(noVisibleSheet);
  if (std::ranges::count(sheets, false, &WorksheetInspection::hidden) > 1)
    return refusal(severalVisibleSheets);
  return &*visible;
}

Result<DocumentWorkerResponse> inspected(const AskWorker& ask, DocumentWorkerRequest& request) {
  request.operation = DocumentWorkerRequest::Operation::inspect;
  return ask(request);
}

}  // namespace

std::string visibleSheets(const WorkbookInspection& inspection) {
  std::string sheets;
  for (const WorksheetInspection& sheet : inspection.sheets) {
    if (sheet.hidden) continue;
    sheets += sheets.empty() ? "" : ", ";
    sheets += sheet.name + " (" + sheet.populatedRange.value_or("empty") + ")";
  }
  return "Visible sheets: " + (sheets.empty() ? "none" : sheets);
}

bool isUnclearChoice(const CommandError& error) {
  return error.message == noVisibleSheet || error.message == severalVisibleSheets;
}

bool isComplete(const TableSelection& selection) {
  return !selection.sheetName.empty() && !numberIn(selection.sheetName) && !selection.range.empty();
}

Failure complete(TableSelection& selection, const WorkbookInspection& inspection) {
  const auto sheet = chosenSheet(inspection.sheets, selection.sheetName);
  if (!sheet) return sheet.error();
  selection.sheetName = (*sheet)->name;
  if (selection.range.empty()) selection.range = (*sheet)->populatedRange.value_or("");
  return std::nullopt;
}

Failure completeTableSelection(const AskWorker& ask, DocumentWorkerRequest& request) {
  TableSelection& selection = *request.selection;
  if (isComplete(selection)) return std::nullopt;
  const auto response = inspected(ask, request);
  if (!response) return response.error();
  if (Failure failure = complete(selection, *response->inspection))
    return CommandError{failure->status, failure->message, {visibleSheets(*response->inspection)}};
  if (!selection.range.empty()) return std::nullopt;
  return CommandError{ExitStatus::refused,
                      DocumentError::invalidSelection(RefusalDetail::noDataRows).errorDescription(),
                      {"The sheet is empty: " + selection.sheetName}};
}

bool isLargerThanTables(const std::string& range) {
  try {
    const auto [first, last] = CellRange::parse(range);
    return last.column - first.column >= TableExtraction::maximumColumns ||
           last.row - first.row >= TableExtraction::maximumRows;
  } catch (const DocumentError&) {
    return false;
  }
}

}  // namespace zelvo
