#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "Support/FakeWorker.hpp"
#include "Support/TemporaryFolder.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using namespace std::chrono_literals;
using Kind = WorkerFailure::Kind;
using Operation = DocumentWorkerRequest::Operation;

DocumentWorkerRequest requestOf(std::string_view document, Operation operation = Operation::inspect) {
  DocumentWorkerRequest request;
  request.operation = operation;
  request.data = ByteBuffer::copyOf(document);
  request.sourceName = "book.xlsx";
  return request;
}

/// What the host makes of a worker that breaks like this.
WorkerReply replyOf(const std::string& act, const DocumentWorkerRequest& request,
                    std::chrono::milliseconds timeout = 60s) {
  const testing::TemporaryFolder folder;
  return DocumentWorkerHost(testing::placeFakeWorker(folder, act), timeout).send(request);
}

const WorkerFailure& failureIn(const WorkerReply& reply) {
  static const WorkerFailure none = {Kind::notRun, 0, "there is a response"};
  const auto* failure = std::get_if<WorkerFailure>(&reply);
  return failure != nullptr ? *failure : none;
}

TEST(DocumentWorkerHost, NamesEveryWayInWhichAWorkerBreaks) {
  const struct {
    std::string act;
    Kind expected;
    std::string message;
  } rows[] = {
      {"exit 65", Kind::gaveNoResponse,
       "The worker gave no response (status 65): it could not use the request, "
       "the response was too large, or memory ran out."},
      {"exit 78", Kind::notConfined,
       "The worker refused to work because it could not confine itself (status 78)."},
      {"exit 3", Kind::unknownStatus, "The worker ended with the unknown status 3. (fake worker: exit)"},
      {"signal 24", Kind::cpuTimeUsedUp, "The worker used up its processor time."},
      {"signal 9", Kind::killed, "The worker was killed (SIGKILL). Memory may have run out."},
      {"signal 31", Kind::killedBeforeReading,
       "The worker was killed by a seccomp filter (SIGSYS) before it read the request. The likely cause is "
       "an "
       "outer filter, of a service manager or a container, that kills instead of returning an error."},
      {"signal 11", Kind::crashed, "The worker crashed (signal 11)."},
      {"hang", Kind::timedOut, "The worker did not end in time and was stopped."},
      {"flood", Kind::responseTooLarge, "The worker wrote more than the largest response and was stopped."},
      {"say {}", Kind::unreadableResponse,
       "The worker's response cannot be read. (It does not answer the request.)"},
  };
  // Larger than any pipe, and no fake reads it: neither side may wait for the other.
  const DocumentWorkerRequest request = requestOf(std::string(5'000'000, 'x'));
  for (const auto& row : rows) {
    const WorkerReply reply = replyOf(row.act, request, row.act == "hang" ? 200ms : 60s);
    EXPECT_EQ(failureIn(reply).kind, row.expected) << row.act;
    EXPECT_EQ(failureIn(reply).message(), row.message);
  }
  for (const std::string response : {"", "{\"inspection\":", "{\"error\":1}", "{\"error\":\"\xff\"}"})
    EXPECT_EQ(failureIn(replyOf("say " + response, request)).kind, Kind::unreadableResponse) << response;
}

// What cannot be staged cheaply with a real process.
TEST(WorkerFailure, TellsTheCausesOfASignalApart) {
  using enum ChildOutcome;
  const std::pair<ChildResult, Kind> rows[] = {
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 1s}, Kind::killed},
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 34s}, Kind::killed},
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 41s}, Kind::cpuTimeUsedUp},
      {{.outcome = killed, .code = SIGSYS, .inputBytesRead = 1}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSYS}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSEGV, .cpuTime = 45s}, Kind::crashed},
      {{.outcome = failed, .code = EMFILE}, Kind::notRun},
  };
  for (const auto& [result, expected] : rows) {
    const auto failure = WorkerFailure::of(result, "/worker");
    ASSERT_TRUE(failure);
    EXPECT_EQ(failure->kind, expected) << failure->message();
  }
  EXPECT_FALSE(WorkerFailure::of({.outcome = exited, .code = 0}, "/worker"));
}

TEST(WorkerFailure, NamesAnOuterFilterThatKillsTheWorkerAtItsStart) {
  for (const std::size_t size : {100U, 5'000'000U}) {
    const ChildResult result = runChildProcess({HOSTILE_PARENT, {"ptrace-kills", REAL_WORKER}},
                                               std::string(size, ' '), {.outputBytes = 1, .wallClock = 60s});
    EXPECT_EQ(WorkerFailure::of(result, "")->kind, Kind::killedBeforeReading) << size;
  }
}

TEST(DocumentWorkerHost, SaysThatThereIsNoWorker) {
  const testing::TemporaryFolder folder;
  const WorkerReply missing = DocumentWorkerHost(folder.path("none")).send(requestOf("x"));
  EXPECT_EQ(failureIn(missing).kind, Kind::notFound);
  EXPECT_EQ(failureIn(missing).message(), "The worker was not found. (" + folder.path("none") + ")");

  const std::string text = folder.write("text", "no program");
  EXPECT_EQ(failureIn(DocumentWorkerHost(text).send(requestOf("x"))).message(),
            "The worker could not be run: Permission denied. (" + text + ")");
}

TEST(DocumentWorkerHost, SendsTheLargestRequestAndStartsNothingForALargerOne) {
  const testing::TemporaryFolder folder;
  const DocumentWorkerHost host(testing::placeFakeWorker(folder, "exit 65"));
  const std::size_t overhead = toJson(requestOf("")).size();
  constexpr std::size_t padding = 1000;  // room to meet the bound to the byte
  const std::size_t documentBytes = (DocumentWorkerWire::maximumMessageBytes - overhead - padding) / 4 * 3;

  DocumentWorkerRequest request = requestOf(std::string(documentBytes, 'x'));
  const std::size_t spare = DocumentWorkerWire::maximumMessageBytes - toJson(request).size();
  request.sourceName.append(spare, 'x');
  EXPECT_EQ(failureIn(host.send(request)).kind, Kind::gaveNoResponse);

  request.sourceName += 'x';
  EXPECT_EQ(failureIn(host.send(request)).kind, Kind::requestTooLarge);
  EXPECT_EQ(failureIn(host.send(requestOf(std::string(DocumentWorkerHost::unsendableBytes, 'x')))).message(),
            "The document is too large: a request to the worker carries less than 30 MiB.");
}

TEST(DocumentWorkerHost, AcceptsOnlyWhatTheOperationPromises) {
  const std::string validation =
      R"("validation":{"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":false,)"
      R"("validatorVersion":"1","warnings":[],"outputSHA256":""})";
  const std::string error = R"("error":"no")";
  const struct {
    Operation operation;
    std::string members;
    bool isAccepted;
  } rows[] = {
      {Operation::validate, validation, true},
      {Operation::validate, error, true},
      {Operation::validate, validation + "," + error, false},
      {Operation::inspect, validation, false},
      {Operation::create, error, true},
  };
  for (const auto& row : rows) {
    const WorkerReply reply = replyOf("say {" + row.members + "}", requestOf("x", row.operation));
    EXPECT_EQ(std::holds_alternative<DocumentWorkerResponse>(reply), row.isAccepted) << row.members;
  }
}

TEST(DocumentWorkerHost, RefusesListsThatNoOperationGives) {
  const auto listOf = [](std::size_t count, const std::string& element) {
    return "[" + testing::repeated(element + ",", count - 1) + element + "]";
  };
  const std::string w = R"("w")";
  const std::string sheet =
      R"({"name":"S","hidden":false,"populatedCellCount":0,"formulaCellCount":0,"formulasMissingCache":0,)"
      R"("hasHiddenRowsOrColumns":false,"hasAutoFilter":false})";
  const std::string cell =
      R"({"address":"A1","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false})";
  const auto inspection = [&](std::size_t sheets, std::size_t warnings) {
    return R"("inspection":{"sourceName":"","sourceSHA256":"","dateSystem":"","calculationMode":"","sheets":)" +
           listOf(sheets, sheet) + R"(,"warnings":)" + listOf(warnings, w) + "}";
  };
  const auto table = [&](std::size_t columns, std::size_t rows, std::size_t cells, std::size_t warnings) {
    return R"("table":{"sourceName":"","sourceSHA256":"","sheetName":"","selectedRange":"","columns":)" +
           listOf(columns, w) + R"(,"rows":)" + listOf(rows, listOf(cells, cell)) + R"(,"warnings":)" +
           listOf(warnings, w) + R"(,"headerUsesCachedFormulaValues":false})";
  };
  const auto validation = [&](std::size_t warnings) {
    return R"("validation":{"structurallyValid":true,"sourceValuesVerified":true,"visuallyVerified":false,)"
           R"("validatorVersion":"","outputSHA256":"","warnings":)" +
           listOf(warnings, w) + "}";
  };
  const auto created = [&](std::size_t warnings) {
    return table(1, 1, 1, 1) + R"(,"document":{"data":"","format":"docx","sourceSHA256":"",)" +
           validation(warnings) + "}";
  };
  using enum DocumentWorkerRequest::Operation;
  const struct {
    Operation operation;
    std::string members;
    std::string place;  ///< of the first element too many
  } rows[] = {
      {inspect, inspection(64, 17), ""},
      {inspect, inspection(65, 1), "inspection.sheets[64]"},
      {inspect, inspection(1, 18), "inspection.warnings[17]"},
      {extract, table(8, 201, 8, 17), ""},
      {extract, table(9, 1, 1, 1), "table.columns[8]"},
      {extract, table(1, 202, 1, 1), "table.rows[201]"},
      {extract, table(1, 1, 9, 1), "table.rows[0][8]"},
      {extract, table(1, 1, 1, 18), "table.warnings[17]"},
      {validate, validation(17), ""},
      {validate, validation(18), "validation.warnings[17]"},
      {create, created(17), ""},
      {create, created(18), "document.validation.warnings[17]"},
  };
  for (const auto& row : rows) {
    const WorkerReply reply = replyOf("say {" + row.members + "}", requestOf("x", row.operation));
    EXPECT_EQ(std::holds_alternative<DocumentWorkerResponse>(reply), row.place.empty());
    if (!row.place.empty()) {
      EXPECT_EQ(failureIn(reply).detail, row.place + ": No operation gives so long a list.");
    }
  }
}

TEST(DocumentWorkerHost, MayBeUsedBySeveralThreadsAtOnce) {
  const DocumentWorkerHost host(REAL_WORKER);
  const testing::TemporaryFolder folder;
  const DocumentWorkerHost broken(testing::placeFakeWorker(folder, "exit 65"));
  const std::string workbook = testing::contentOf(EXAMPLE_WORKBOOK);
  std::atomic<int> right = 0;
  const auto work = [&](int thread) {
    for (int i = 0; i < 4; ++i) {
      DocumentWorkerRequest request = requestOf(workbook);
      request.sourceName = std::to_string(thread) + "-" + std::to_string(i);
      const WorkerReply reply = host.send(request);
      const auto* response = std::get_if<DocumentWorkerResponse>(&reply);
      right += response != nullptr && response->inspection &&
               response->inspection->sourceName == request.sourceName;
      right += failureIn(broken.send(request)).kind == Kind::gaveNoResponse;
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 6; ++thread)
    threads.emplace_back(work, thread);
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(right, 6 * 4 * 2);
}

TEST(DocumentWorkerHost, SpeaksToTheRealWorker) {
  const DocumentWorkerHost host(REAL_WORKER);
  const WorkerReply refused = host.send(requestOf("no workbook, but longer than 22 bytes"));
  const auto* response = std::get_if<DocumentWorkerResponse>(&refused);
  ASSERT_NE(response, nullptr) << failureIn(refused).message();
  EXPECT_EQ(response->error, "The document archive is invalid: missing ZIP directory");

  const WorkerReply inspected = host.send(requestOf(testing::contentOf(EXAMPLE_WORKBOOK)));
  response = std::get_if<DocumentWorkerResponse>(&inspected);
  ASSERT_NE(response, nullptr) << failureIn(inspected).message();
  ASSERT_TRUE(response->inspection) << response->error.value_or("");
  ASSERT_EQ(response->inspection->sheets.size(), 5U);
  EXPECT_EQ(response->inspection->sheets[1],
            (WorksheetInspection{"Orders", false, "A1:H25", 200, 48, 0, true, true}));
}

}  // namespace
}  // namespace zelvo
