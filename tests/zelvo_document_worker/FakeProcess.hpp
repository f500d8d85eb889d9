#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Support/PackageBuilder.hpp"
#include "Support/Texts.hpp"
#include "System/EntitlementReader.hpp"
#include "System/ResourceLimits.hpp"
#include "System/StandardStreams.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

namespace zelvo::testing {

/// Decodes, and fails at once in the dispatcher, with that answer.
inline const std::string smallRequest = R"({"operation":"extract","data":"","sourceName":"a.xlsx"})";
inline const std::string smallResponse = R"({"error":"The selected table cannot be used: Choose a table."})";

/// Has every field that an operation needs. Some texts are long, some must be decoded or counted.
inline DocumentWorkerRequest completeRequest(DocumentWorkerRequest::Operation operation,
                                             DocumentFormat format = DocumentFormat::pptx) {
  WorkbookText workbook = richWorkbook();
  workbook.sheets.back().name = "S\u00fcd";
  DocumentWorkerRequest request;
  request.operation = operation;
  request.data = ByteBuffer::copyOf(workbookPackage(workbook).archive().bytes());
  request.sourceName = "a workbook with a name that is not short.xlsx";
  request.selection = {.sheetName = "Sales", .range = "A1:B2", .firstRowIsHeader = true};
  request.format = format;
  request.title = repeated("S\u00fcd \U0001F469\u200d\U0001F469\u200d\U0001F467", 8);
  request.chart = {.categoryColumn = 0, .valueColumn = 1, .title = "Revenue"};
  return request;
}

/// A request to validate the document that the request to create it returns.
inline DocumentWorkerRequest validationOfCreated() {
  DocumentWorkerResponse created = zelvo::run(completeRequest(DocumentWorkerRequest::Operation::create));
  DocumentWorkerRequest request = completeRequest(DocumentWorkerRequest::Operation::validate);
  request.data = std::move(created.document->data);
  request.expectedTable = std::move(created.table);
  return request;
}

/// A process as the worker sees it. It records what the worker does to it, one event a call.
class FakeProcess : private EntitlementReader, private Limits, private Input, private Output {
 public:
  std::string input = smallRequest;
  std::size_t bytesPerRead = 65'536;
  std::size_t readsUntilFailure = ~std::size_t{0};
  std::string failingEvent;  ///< the call that fails; if it asks for an entitlement, its value is
  EntitlementValue failingValue = EntitlementValue::other;

  std::vector<std::string> events;
  std::string output;

  int run(RequestHandler handle = answerDocumentRequest) {
    return runWorker(*this, *this, *this, *this, handle);
  }

  std::ptrdiff_t count(std::string_view event) const { return std::ranges::count(events, event); }

 private:
  bool note(const std::string& event) {
    events.push_back(event);
    return event != failingEvent;
  }
  EntitlementValue value(std::string_view key) override {
    if (!note("entitlement " + std::string(key))) return failingValue;
    return key == entitlement::appSandbox ? EntitlementValue::granted : EntitlementValue::absent;
  }
  bool apply(const ResourceLimit& limit) override {
    constexpr std::array names = {"cpu seconds ", "file bytes ", "processes "};
    return note("limit " + (names[static_cast<std::size_t>(limit.resource)] + std::to_string(limit.soft)) +
                "/" + std::to_string(limit.hard));
  }
  bool seal() override { return note("seal"); }
  std::optional<std::size_t> read(std::span<char> buffer) override {
    note("read " + std::to_string(buffer.size()));
    if (readsUntilFailure-- == 0) return std::nullopt;
    const std::size_t size = input.copy(buffer.data(), std::min(buffer.size(), bytesPerRead), position_);
    position_ += size;
    return size;
  }
  bool write(std::string_view bytes) override {
    output += bytes;
    return note("write");
  }

  std::size_t position_ = 0;
};

}  // namespace zelvo::testing
