// Owns the order of a worker's steps, the bounds of its messages, and its exit status.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "FakeProcess.hpp"
#include "Support/Cases.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/Texts.hpp"

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

TEST(WorkerEntry, TakesEachStepOnceAndInOrder) {
  FakeProcess process;
  EXPECT_EQ(process.run(), 0);
  Events expected = preparation;
  expected.insert(expected.end(), {"read 65536", "read 65536", "write"});
  EXPECT_EQ(process.events, expected);
  EXPECT_EQ(process.output, smallResponse);
}

TEST(WorkerEntry, StopsAtAWrongEntitlement) {
  using enum EntitlementValue;
  for (std::size_t i = 0; i < 6; ++i) {
    const std::string key = preparation[i].substr(std::string("entitlement ").size());
    for (const auto value : {absent, denied, granted, other}) {
      // The sandbox must be granted, the others must not.
      const bool isWrong = (i == 0) != (value == granted);
      FakeProcess process;
      process.entitlements[key] = value;
      EXPECT_EQ(process.run(), isWrong ? 78 : 0) << key;
      if (!isWrong) continue;
      EXPECT_EQ(process.events, Events(preparation.begin(), preparation.begin() + static_cast<int>(i) + 1));
      EXPECT_EQ(process.output, "");
    }
  }
}

TEST(WorkerEntry, StopsAtALimitThatCannotBeSet) {
  for (std::size_t i = 6; i < preparation.size(); ++i) {
    FakeProcess process;
    process.failingEvent = preparation[i];
    EXPECT_EQ(process.run(), 78) << preparation[i];
    EXPECT_EQ(process.events, Events(preparation.begin(), preparation.begin() + static_cast<int>(i) + 1));
  }
}

TEST(WorkerEntry, ReadsInPiecesAndWritesNothingIfAReadFails) {
  constexpr std::size_t size = 7;
  const std::size_t pieces = (smallRequest.size() + size - 1) / size;
  for (std::size_t reads = 0; reads <= pieces + 1; ++reads) {
    FakeProcess process;
    process.bytesPerRead = size;
    process.readsUntilFailure = reads;
    const bool isWhole = reads == pieces + 1;  // the last read finds the end
    EXPECT_EQ(process.run(), isWhole ? 0 : 65);
    EXPECT_EQ(process.count("read 65536"), isWhole ? reads : reads + 1);
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
    EXPECT_EQ(process.count("write"), 0U);
  }
}

TEST(WorkerEntry, FailsIfItCannotWrite) {
  FakeProcess process;
  process.failingEvent = "write";
  EXPECT_EQ(process.run(), 65);
  EXPECT_EQ(process.count("write"), 1U);
}

/// A request for a column of a workbook's sheet "Data".
std::string extraction(const testing::WorkbookText& workbook, const std::string& range,
                       const std::string& sourceName) {
  DocumentWorkerRequest request;
  request.operation = DocumentWorkerRequest::Operation::extract;
  request.data = ByteBuffer::copyOf(testing::workbookPackage(workbook).archive().bytes());
  request.sourceName = sourceName;
  request.selection = {.sheetName = "Data", .range = range};
  return toJson(request);
}

TEST(WorkerEntry, WritesNoResponseThatIsTooLarge) {
  // Every cell of the table shows one shared string: one user-perceived character with many marks.
  constexpr std::size_t cells = 200;
  const std::string mark = "\u0301";
  const auto respond = [&](FakeProcess& process, std::size_t marks, std::size_t nameBytes) {
    testing::WorkbookText workbook = testing::sharedStringColumn(cells);
    workbook.sharedStrings = {"<t>e" + repeated(mark, marks) + "</t>"};
    process.input = extraction(workbook, "A1:A200", std::string(nameBytes, 'x'));
    return process.run();
  };
  FakeProcess small;
  ASSERT_EQ(respond(small, 0, 0), 0);
  const std::size_t room = bound - small.output.size();
  const std::size_t marks = room / (cells * mark.size());
  const std::size_t nameBytes = room % (cells * mark.size());
  FakeProcess largest;
  EXPECT_EQ(respond(largest, marks, nameBytes), 0);
  EXPECT_EQ(largest.output.size(), bound);
  FakeProcess tooLarge;
  EXPECT_EQ(respond(tooLarge, marks, nameBytes + 1), 65);
  EXPECT_EQ(tooLarge.count("write"), 0U);
  // Far larger: extraction stops before the table is whole.
  FakeProcess farTooLarge;
  EXPECT_EQ(respond(farTooLarge, 2 * marks, 0), 65);
  EXPECT_EQ(farTooLarge.count("write"), 0U);
}

TEST(WorkerEntry, CutsErrorsToFiveHundredCharacters) {
  const std::string before = "This document feature is not supported yet: cell type ";
  const std::string pair = "👩‍👩‍👧é";  // two user-perceived characters of 18 and 3 bytes
  const auto errorFor = [&](std::size_t pairs) {
    const std::string cell = "<c r='A1' t='" + repeated(pair, pairs) + "'><v>1</v></c>";
    FakeProcess process;
    process.input = extraction(testing::plainWorkbook("<row r='1'>" + cell + "</row>"), "A1", "a.xlsx");
    EXPECT_EQ(process.run(), 0);
    const auto response = fromJson<DocumentWorkerResponse>(process.output);
    EXPECT_EQ(toJson(response), process.output);
    return response.error.value_or("no error");
  };
  const std::size_t pairsThatFit = (500 - before.size()) / 2;
  EXPECT_EQ(errorFor(pairsThatFit), before + repeated(pair, pairsThatFit));
  EXPECT_EQ(errorFor(pairsThatFit + 1), before + repeated(pair, pairsThatFit));
  EXPECT_EQ(errorFor(pairsThatFit + 50), before + repeated(pair, pairsThatFit));
}

}  // namespace
}  // namespace zelvo
