#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "FakeProcess.hpp"
#include "Support/PackageBuilder.hpp"

namespace zelvo {
namespace {

using testing::FakeProcess;

/// Decodes, and fails at once in the dispatcher.
const std::string smallRequest = R"({"operation":"extract","data":"","sourceName":"a.xlsx"})";
const std::string smallResponse = R"({"error":"The selected table cannot be used: Choose a table."})";

const std::vector<std::string> preparation = {
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

TEST(WorkerEntry, DoesEverythingOnceAndInOrder) {
  FakeProcess process;
  process.input = smallRequest;
  EXPECT_EQ(process.run(), 0);
  auto expected = preparation;
  expected.insert(expected.end(), {"read 65536", "read 65536", "write"});
  EXPECT_EQ(process.events, expected);
  EXPECT_EQ(process.output, smallResponse);
}

TEST(WorkerEntry, AWrongEntitlementIsTheLastQuestion) {
  const auto expectRefusal = [](const std::string& key, EntitlementValue value, std::size_t questions) {
    FakeProcess process;
    process.input = smallRequest;
    process.entitlements[key] = value;
    EXPECT_EQ(process.run(), 78) << key;
    EXPECT_EQ(process.events.size(), questions) << key;
    EXPECT_EQ(process.events.back(), "entitlement " + key);
    EXPECT_EQ(process.output, "");
  };
  constexpr std::string_view prefix = "entitlement ";
  const std::string sandbox = preparation[0].substr(prefix.size());
  for (const auto value : {EntitlementValue::absent, EntitlementValue::denied, EntitlementValue::other}) {
    expectRefusal(sandbox, value, 1);
  }
  for (std::size_t i = 1; i < 6; ++i) {
    const std::string forbidden = preparation[i].substr(prefix.size());
    expectRefusal(forbidden, EntitlementValue::granted, i + 1);
    for (const auto value : {EntitlementValue::denied, EntitlementValue::other}) {
      FakeProcess process;
      process.input = smallRequest;
      process.entitlements[forbidden] = value;
      EXPECT_EQ(process.run(), 0) << forbidden;
    }
  }
}

TEST(WorkerEntry, ALimitThatCannotBeSetIsTheLastStep) {
  for (std::size_t i = 6; i < preparation.size(); ++i) {
    FakeProcess process;
    process.input = smallRequest;
    process.failingEvent = preparation[i];
    EXPECT_EQ(process.run(), 78) << preparation[i];
    EXPECT_EQ(process.events,
              std::vector(preparation.begin(), preparation.begin() + static_cast<int>(i) + 1));
  }
}

TEST(WorkerEntry, ReadsInPiecesOfAnySize) {
  for (const std::size_t size : {1U, 7U, 55U}) {
    FakeProcess process;
    process.input = smallRequest;
    process.bytesPerRead = size;
    EXPECT_EQ(process.run(), 0);
    EXPECT_EQ(process.count("read 65536"), (smallRequest.size() + size - 1) / size + 1);
    EXPECT_EQ(process.output, smallResponse);
  }
}

TEST(WorkerEntry, NothingIsWrittenWhenAReadFails) {
  for (std::size_t reads = 0; reads < 4; ++reads) {
    FakeProcess process;
    process.input = smallRequest;
    process.bytesPerRead = 20;
    process.readsUntilFailure = reads;
    EXPECT_EQ(process.run(), 65);
    EXPECT_EQ(process.count("read 65536"), reads + 1);
    EXPECT_EQ(process.count("write"), 0U);
  }
}

TEST(WorkerEntry, RequestsAreBounded) {
  constexpr std::size_t bound = 41'943'040;
  for (const std::size_t bytesPerRead : {65'536U, 65'521U}) {
    for (const std::size_t size : {bound - 1, bound, bound + 1, bound + 200'000}) {
      FakeProcess process;
      process.input = smallRequest;
      process.input.resize(size, ' ');
      process.bytesPerRead = bytesPerRead;
      EXPECT_EQ(process.run(), size <= bound ? 0 : 65) << size;
      EXPECT_EQ(process.output, size <= bound ? smallResponse : "");
      // One more to see the end, or none behind the one that passes the bound.
      const std::size_t reads =
          size <= bound ? (size + bytesPerRead - 1) / bytesPerRead + 1 : bound / bytesPerRead + 1;
      EXPECT_EQ(process.count("read 65536"), reads) << size;
    }
  }
}

TEST(WorkerEntry, UndecodableRequestsGetNoResponse) {
  const std::string head = R"({"operation":"extract","data":"","sourceName":"a")";
  const std::vector<std::string> requests = {
      "",
      " ",
      "null",
      "[]",
      "{}",
      smallRequest + "x",
      smallRequest.substr(0, smallRequest.size() - 1),
      R"({"data":"","sourceName":"a"})",
      R"({"operation":"extract","sourceName":"a"})",
      R"({"operation":"extract","data":""})",
      R"({"operation":"Extract","data":"","sourceName":"a"})",
      R"({"operation":null,"data":"","sourceName":"a"})",
      R"({"operation":"extract","data":null,"sourceName":"a"})",
      R"({"operation":"extract","data":"UE","sourceName":"a"})",
      R"({"operation":"extract","data":[80,75],"sourceName":"a"})",
      R"({"operation":"extract","data":"","sourceName":1})",
      // Also in keys that the operation does not use.
      head + R"(,"selection":{}})",
      head + R"(,"selection":[]})",
      head + R"(,"format":"pdf"})",
      head + R"(,"title":7})",
      head + R"(,"chart":{"categoryColumn":0,"valueColumn":1.5,"title":""}})",
      head + R"(,"expectedTable":{"rows":[]}})",
  };
  for (const std::string& request : requests) {
    FakeProcess process;
    process.input = request;
    EXPECT_EQ(process.run(), 65) << request;
    EXPECT_EQ(process.count("write"), 0U) << request;
  }
}

TEST(WorkerEntry, AFailedWriteIsNoAnswer) {
  FakeProcess process;
  process.input = smallRequest;
  process.failingEvent = "write";
  EXPECT_EQ(process.run(), 65);
  EXPECT_EQ(process.count("write"), 1U);
}

TEST(WorkerEntry, AResponseThatIsTooLargeIsNotWritten) {
  // One shared string is one user-perceived character of many marks, and stands in every cell of the table.
  constexpr std::size_t bound = 41'943'040;
  constexpr std::size_t cells = 200;
  const std::string mark = "\u0301";
  std::string rows;
  for (std::size_t row = 1; row <= cells; ++row) {
    const std::string number = std::to_string(row);
    rows.append("<row r='")
        .append(number)
        .append("'><c r='A")
        .append(number)
        .append("' t='s'><v>0</v></c></row>");
  }
  const auto respond = [&](FakeProcess& process, std::size_t marks, std::size_t nameBytes) {
    std::string text = "<t>e";
    for (std::size_t i = 0; i < marks; ++i) {
      text += mark;
    }
    testing::WorkbookText workbook = testing::plainWorkbook(rows);
    workbook.sharedStrings = {text + "</t>"};
    DocumentWorkerRequest request;
    request.operation = DocumentWorkerRequest::Operation::extract;
    request.data = ByteBuffer::copyOf(testing::workbookPackage(workbook).archive().bytes());
    request.sourceName = std::string(nameBytes, 'x');
    request.selection = {.sheetName = "Data", .range = "A1:A200"};
    process.input = toJson(request);
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
}

TEST(WorkerEntry, ErrorsAreCutToFiveHundredCharacters) {
  const std::string before = "This document feature is not supported yet: cell type ";
  const std::string character = "👩‍👩‍👧é";  // two user-perceived characters of 18 and 3 bytes
  const auto errorFor = [&](std::size_t pairs) {
    std::string type;
    for (std::size_t i = 0; i < pairs; ++i) {
      type += character;
    }
    DocumentWorkerRequest request;
    request.operation = DocumentWorkerRequest::Operation::extract;
    request.data =
        ByteBuffer::copyOf(testing::workbookPackage(testing::plainWorkbook(R"(<row r="1"><c r="A1" t=")" +
                                                                           type + R"("><v>1</v></c></row>)"))
                               .archive()
                               .bytes());
    request.sourceName = "a.xlsx";
    request.selection = {.sheetName = "Data", .range = "A1"};
    FakeProcess process;
    process.input = toJson(request);
    EXPECT_EQ(process.run(), 0);
    const auto response = fromJson<DocumentWorkerResponse>(process.output);
    EXPECT_EQ(toJson(response), process.output);
    return response.error.value_or("no error");
  };
  const std::size_t pairsThatFit = (500 - before.size()) / 2;
  const std::string longest = errorFor(pairsThatFit);
  EXPECT_EQ(longest.size(), before.size() + pairsThatFit * character.size());
  EXPECT_EQ(errorFor(pairsThatFit + 1), longest);
  EXPECT_EQ(errorFor(pairsThatFit + 50), longest);
}

}  // namespace
}  // namespace zelvo
