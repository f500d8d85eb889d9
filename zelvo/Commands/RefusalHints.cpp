#include "zelvo/Commands/RefusalHints.hpp"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "zelvo/Extraction/SheetChoice.hpp"
#include "zelvo/Hints/FileKind.hpp"

namespace zelvo {
namespace {

bool isExpected(FileKind kind, Stage stage) {
  if (stage != Stage::validating) return kind == FileKind::workbook || kind == FileKind::archive;
  return kind == FileKind::wordDocument || kind == FileKind::presentation || kind == FileKind::archive;
}

/// Adds what the file is, if it is not what the stage reads, and returns true then.
bool addFileKind(CommandError& error, const Advice& advice, Stage stage, ByteView document) {
  if (!advice.findFileKind) return false;
  const FileKind kind = kindOfFile(document);
  if (isExpected(kind, stage)) return false;
  error.hints.emplace_back(sentence(kind));
  return true;
}

void addAll(CommandError& error, const std::vector<std::string_view>& hints) {
  error.hints.insert(error.hints.end(), hints.begin(), hints.end());
}

/// Sends another operation on the same document.
Result<DocumentWorkerResponse> askAlso(const Hosts& hosts, DocumentWorkerRequest& request,
                                       DocumentWorkerRequest::Operation other) {
  const auto operation = std::exchange(request.operation, other);
  auto response = ask(hosts.worker, request);
  request.operation = operation;
  return response;
}

/// See `visibleSheets`; empty if the workbook cannot be inspected.
std::string sheetsOf(const Hosts& hosts, DocumentWorkerRequest& request) {
  const auto response = askAlso(hosts, request, DocumentWorkerRequest::Operation::inspect);
  return response ? visibleSheets(*response->inspection) : "";
}

/// Adds which cell has a carriage return. XML readers turn it into a line feed, so that the document that was
/// read back shows another text.
void addCarriageReturn(CommandError& error, const Hosts& hosts, DocumentWorkerRequest& request) {
  const auto response = askAlso(hosts, request, DocumentWorkerRequest::Operation::extract);
  if (!response) return;
  const auto hasOne = [](const std::string& text) { return text.find('\r') != std::string::npos; };
  std::string place;
  if (std::ranges::any_of(response->table->columns, hasOne)) place = "The header row";
  for (const auto& row : response->table->rows) {
    for (const SourceCell& cell : row) {
      if (place.empty() && hasOne(cell.displayText())) place = "Cell " + cell.address;
    }
  }
  if (!place.empty())
    error.hints.push_back(place +
                          " has a carriage return, which documents cannot keep: they read it as a line feed. "
                          "Choose a --range without it, or replace it in the workbook.");
}

/// "It holds 2 pictures (xl/media/image1.png and 1 more), 11,672 hyperlinks."; empty if nothing worth saying
/// was left out.
std::string leftOut(const CleaningReport& report) {
  std::string list;
  for (const DroppedContent& dropped : report.dropped) {
    CleaningReport one;
    one.dropped.push_back(dropped);
    const std::string words = droppedInWords(one);
    if (words.empty()) continue;
    list += (list.empty() ? "It holds " : ", ") + words;
    if (dropped.parts.empty()) continue;
    list += " (" + dropped.parts.front();
    const std::size_t others = dropped.parts.size() - 1;
    list += others == 0 ? ")" : " and " + std::to_string(others) + " more)";
  }
  return list.empty() ? list : list + ".";
}

/// Cleans the workbook and sends the request again. What is refused for another reason is accepted up to
/// there, so that cleaning is one of the steps that help.
void addTrialOfCleaning(CommandError& error, const Hosts& hosts, DocumentWorkerRequest request) {
  const DocumentCleanerRequest dirty = {.sourceName = request.sourceName, .data = std::move(request.data)};
  auto cleaned = ask(hosts.cleaner, dirty);
  if (!cleaned) {
    if (cleaned.error().status != ExitStatus::refused || cleaned.error().message == error.message) return;
    error.hints.push_back("Cleaning does not help: " + cleaned.error().message);
    addAll(error, adviceFor(cleaned.error().message, Stage::cleaning).hints);
    return;
  }
  request.data = std::move(cleaned->document->data);
  const auto response = ask(hosts.worker, request);
  if (!response &&
      (response.error().status != ExitStatus::refused || response.error().message == error.message))
    return;
  if (std::string found = leftOut(*cleaned->report); !found.empty()) error.hints.push_back(std::move(found));
  error.hints.emplace_back(
      "--clean reads a copy of the workbook that holds only its cells; zelvo clean writes it to a file.");
  if (!response) error.hints.push_back("After --clean: " + response.error().message);
}

}  // namespace

CommandError withHints(CommandError error, Stage stage, ByteView document) {
  if (error.status != ExitStatus::refused) return error;
  const Advice advice = adviceFor(error.message, stage);
  if (!addFileKind(error, advice, stage, document)) addAll(error, advice.hints);
  return error;
}

CommandError withHints(CommandError error, const Hosts& hosts, DocumentWorkerRequest request, Stage stage) {
  if (error.status != ExitStatus::refused) return error;
  const Advice advice = adviceFor(error.message, stage, request.selection ? &*request.selection : nullptr);
  if (addFileKind(error, advice, stage, request.data.view())) return error;
  addAll(error, advice.hints);
  if (advice.listSheets) {
    if (std::string sheets = sheetsOf(hosts, request); !sheets.empty())
      error.hints.push_back(std::move(sheets));
  }
  if (advice.findCarriageReturn) addCarriageReturn(error, hosts, request);
  if (advice.tryCleaning) addTrialOfCleaning(error, hosts, std::move(request));
  return error;
}

CommandError withTableHints(CommandError error, const Hosts& hosts, WorkbookInput workbook) {
  // One that has hints was found without the worker.
  if (!error.hints.empty()) return error;
  if (isUnclearChoice(error)) {
    const std::string sheets = sheetsOf(hosts, workbook.request);
    if (!sheets.empty()) error.hints.push_back(sheets);
    return error;
  }
  const Stage stage = workbook.cleaning ? Stage::readingCleaned : Stage::reading;
  return withHints(std::move(error), hosts, std::move(workbook.request), stage);
}

}  // namespace zelvo
