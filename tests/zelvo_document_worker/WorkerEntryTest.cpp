// Owns the order of a worker's steps, the bounds of its messages, its exit status, and which operation runs.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "FakeProcess.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::FakeProcess;
using testing::repeated;
using testing::smallRequest;
using testing::smallResponse;
using Events = std::vector<std::string>;

constexpr std::size_t bound = DocumentWorkerWire::maximumMessageBytes;
static_assert(bound == 41'943'040);

const Events preparation = {
    "entitlement com.apple.security.app-sandbox",
    "entitlement com.apple.security.network.client",
    "entitlement com.apple.security.network.server",
    "entitlement com.apple.security.inherit",
    "entitlement com.apple.security.files.user-selected.read-write",
    "entitlement com.apple.security.automation.apple-events",
    "limit cpu seconds 45/45",
    "limit file bytes 0/0",
    "limit processes 0/0",
    "seal",
};

TEST(WorkerEntry, TakesEachStepOnceAndStopsAtTheFirstThatFails) {
  FakeProcess whole;
  EXPECT_EQ(whole.run(), 0);
  Events expected = preparation;
  expected.insert(expected.end(), {"read 65536", "read 65536", "write"});
  EXPECT_EQ(whole.events, expected);
  EXPECT_EQ(whole.output, smallResponse);

  using enum EntitlementValue;
  for (std::size_t i = 0; i < preparation.size(); ++i) {
    for (const auto value : {absent, denied, granted, other}) {
      FakeProcess process;
      process.failingEvent = preparation[i];
      process.failingValue = value;
      // The sandbox must be granted, the other entitlements must not. A limit and the seal fail whatever the
      // value is.
      const bool isRight = i == 0 ? value == granted : i < 6 && value != granted;
      EXPECT_EQ(process.run(), isRight ? 0 : 78) << preparation[i];
      if (isRight) continue;
      EXPECT_EQ(process.events, Events(preparation.begin(), preparation.begin() + static_cast<int>(i) + 1));
      EXPECT_EQ(process.output, "");
    }
  }
  FakeProcess mute;
  mute.failingEvent = "write";
  EXPECT_EQ(mute.run(), 65);
  EXPECT_EQ(mute.count("write"), 1);
}

TEST(WorkerEntry, ReadsInPiecesAndWritesNothingIfAReadFails) {
  constexpr std::size_t pieces = 8;
  for (std::size_t reads = 0; reads <= pieces + 1; ++reads) {
    FakeProcess process;
    process.bytesPerRead = (smallRequest.size() + pieces - 1) / pieces;
    process.readsUntilFailure = reads;
    const bool isWhole = reads == pieces + 1;  // the last read finds the end
    EXPECT_EQ(process.run(), isWhole ? 0 : 65);
    EXPECT_EQ(process.output, isWhole ? smallResponse : "");
  }
}

TEST(WorkerEntry, BoundsTheRequest) {
  for (const std::size_t bytesPerRead : {65'536U, 65'521U}) {
    for (const std::size_t size : {bound - 1, bound, bound + 1, bound + 200'000}) {
      FakeProcess process;
      process.input.resize(size, ' ');
      process.bytesPerRead = bytesPerRead;
      EXPECT_EQ(process.run(), size <= bound ? 0 : 65) << size;
      EXPECT_EQ(process.output, size <= bound ? smallResponse : "");
      // One more finds the end. None follows the one that exceeds the bound.
      const std::size_t reads =
          size <= bound ? (size + bytesPerRead - 1) / bytesPerRead : bound / bytesPerRead;
      EXPECT_EQ(process.count("read 65536"), reads + 1) << size;
    }
  }
}

TEST(WorkerEntry, WritesNothingForAnUndecodableRequest) {
  Events requests =
      testing::words(R"(null {} {"data":"","sourceName":"a"} {"operation":"extract","sourceName":"a"}
      {"operation":"Extract","data":"","sourceName":"a"} {"operation":"extract","data":"UE","sourceName":"a"}
      {"operation":"extract","data":"","sourceName":"a","format":"pdf"})");
  requests.insert(requests.end(), {"", "\xff", smallRequest + "x", std::string(2'000'000, '[')});
  for (const std::string& request : requests) {
    FakeProcess process;
    process.input = request;
    EXPECT_EQ(process.run(), 65) << request.substr(0, 80);
    EXPECT_EQ(process.count("write"), 0);
  }
}

TEST(WorkerEntry, WritesNoResponseThatIsTooLarge) {
  FakeProcess largest;
  EXPECT_EQ(largest.run([](auto) { return std::optional(std::string(bound, 'x')); }), 0);
  EXPECT_EQ(largest.output.size(), bound);
  FakeProcess tooLarge;
  EXPECT_EQ(tooLarge.run([](auto) { return std::optional(std::string(bound + 1, 'x')); }), 65);
  EXPECT_EQ(tooLarge.count("write"), 0);
  FakeProcess stopped;
  EXPECT_EQ(stopped.run([](auto) -> std::optional<std::string> { throw ResponseTooLarge(); }), 65);
}

/// The answer to a request for a range of the sheet "Data".
DocumentWorkerResponse extracted(const testing::WorkbookText& workbook, const std::string& range) {
  auto request = testing::completeRequest(DocumentWorkerRequest::Operation::extract);
  request.data = ByteBuffer::copyOf(testing::workbookPackage(workbook).archive().bytes());
  request.selection = {.sheetName = "Data", .range = range};
  return fromJson<DocumentWorkerResponse>(answerDocumentRequest(toJson(request)).value());
}

TEST(WorkerEntry, AnswersNoTableThatIsTooLarge) {
  testing::WorkbookText workbook = testing::sharedStringColumn(200);
  workbook.sharedStrings = {"<t>e" + repeated("\u0301", 120'000) + "</t>"};
  EXPECT_THROW(extracted(workbook, "A1:A200"), ResponseTooLarge);
}

TEST(WorkerEntry, CutsErrorsToFiveHundredCharacters) {
  const std::string before = "This document feature is not supported yet: cell type ";
  const std::string pair = "👩‍👩‍👧é";  // two user-perceived characters of 18 and 2 bytes
  const std::size_t pairsThatFit = (500 - before.size()) / 2;
  for (const std::size_t more : {0U, 1U, 50U}) {
    const std::string cell = "<c r='A1' t='" + repeated(pair, pairsThatFit + more) + "'><v>1</v></c>";
    EXPECT_EQ(extracted(testing::plainWorkbook("<row r='1'>" + cell + "</row>"), "A1").error,
              before + repeated(pair, pairsThatFit));
  }
}

TEST(Dispatcher, RefusesMissingFieldsBeforeAnyWork) {
  using enum DocumentWorkerRequest::Operation;
  const auto outcome = [](DocumentWorkerRequest::Operation operation, auto field) {
    DocumentWorkerRequest request = testing::completeRequest(operation);
    request.data = ByteBuffer();  // the engine would fail with another error
    (request.*field).reset();
    return testing::outcomeOf([&] { run(std::move(request)); });
  };
  const char* const plan = "invalidSelection: The document plan is incomplete.";
  using Request = DocumentWorkerRequest;
  EXPECT_EQ(outcome(extract, &Request::selection), "invalidSelection: Choose a table.");
  EXPECT_EQ(outcome(create, &Request::selection), plan);
  EXPECT_EQ(outcome(create, &Request::format), plan);
  EXPECT_EQ(outcome(create, &Request::title), plan);
  EXPECT_EQ(outcome(validate, &Request::format), "validationFailed: Missing document format.");
}

TEST(Dispatcher, ExpectsWhatTheRequestNames) {
  const auto passesWith = [](void (*change)(DocumentWorkerRequest&)) {
    DocumentWorkerRequest request = testing::validationOfCreated();
    change(request);
    return testing::outcomeOf([&] { run(std::move(request)); }) == "";
  };
  EXPECT_TRUE(passesWith([](auto&) {}));
  EXPECT_FALSE(passesWith([](auto& request) { request.format = DocumentFormat::docx; }));
  EXPECT_FALSE(passesWith([](auto& request) { request.chart.reset(); }));
  EXPECT_FALSE(passesWith([](auto& request) { request.expectedTable->columns[0] = "another"; }));
}

}  // namespace
}  // namespace zelvo
