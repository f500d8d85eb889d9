// Owns the exchange with a worker, the names of its failures, and which responses are accepted.

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
#include "Support/Cases.hpp"
#include "Support/FakeWorker.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using namespace std::chrono_literals;
using Kind = WorkerFailure::Kind;
using enum DocumentWorkerRequest::Operation;

DocumentWorkerRequest requestOf(std::string_view document,
                                DocumentWorkerRequest::Operation operation = inspect) {
  return {.operation = operation, .data = ByteBuffer::copyOf(document), .sourceName = "book.xlsx"};
}

WorkerReply replyOf(const std::string& act, const DocumentWorkerRequest& request) {
  const testing::TemporaryFolder folder;
  const auto timeout = act == "hang" ? 200ms : 60s;
  return DocumentWorkerHost(testing::placeFakeWorker(folder, act), timeout).send(request);
}

/// The message, or nothing if there is a response.
std::string messageOf(const WorkerReply& reply) {
  const auto* failure = std::get_if<WorkerFailure>(&reply);
  return failure != nullptr ? failure->message() : "";
}

TEST(DocumentWorkerHost, NamesEveryFailureOfAWorker) {
  // Larger than a pipe, and the fake worker never reads it: neither side may wait for the other.
  const DocumentWorkerRequest request = requestOf(std::string(5'000'000, 'x'));
  for (const auto& [act, message] : testing::cases<2>(R"(
      exit 65 => gave no response (status 65): it could not use the request, the response was too large, or memory ran out.
      exit 78 => refused to work because it could not confine itself (status 78).
      exit 3 => ended with the unknown status 3. (fake worker: exit)
      signal 24 => used up its processor time.
      signal 9 => was killed (SIGKILL). Memory may have run out.
      signal 31 => was killed by a seccomp filter (SIGSYS) before it read the request. The likely cause is an outer filter, of a service manager or a container, that kills instead of returning an error.
      signal 11 => crashed (signal 11).
      hang => did not end in time and was stopped.
      flood => wrote more than the largest response and was stopped.)"))
    EXPECT_EQ(messageOf(replyOf(act, request)), "The worker " + message);
  for (const std::string response : {"", "{\"inspection\":", "{\"error\":1}", "{\"error\":\"\xff\"}", "{}"})
    EXPECT_TRUE(messageOf(replyOf("say " + response, request))
                    .starts_with("The worker's response cannot be read. ("));

  const testing::TemporaryFolder folder;
  const std::string text = folder.write("text", "no program");
  EXPECT_EQ(messageOf(DocumentWorkerHost(text).send(request)),
            "The worker could not be run: Permission denied. (" + text + ")");
  EXPECT_EQ(messageOf(DocumentWorkerHost("/none").send(request)), "The worker was not found. (/none)");
}

// Causes that cost too much with a real process.
TEST(WorkerFailure, DistinguishesCausesOfASignal) {
  using enum ChildOutcome;
  const std::pair<ChildResult, Kind> rows[] = {
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 34s}, Kind::killed},
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 41s}, Kind::cpuTimeUsedUp},
      {{.outcome = killed, .code = SIGSYS, .inputBytesRead = 1}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSYS}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSEGV, .cpuTime = 45s}, Kind::crashed},
      {{.outcome = failed, .code = EMFILE}, Kind::notRun},
      {runChildProcess({HOSTILE_PARENT, {"ptrace-kills", REAL_WORKER}}, std::string(5'000'000, ' '),
                       {1, 60s}),
       Kind::killedBeforeReading},
  };
  for (const auto& [result, expected] : rows)
    EXPECT_EQ(WorkerFailure::of(result, "/worker").value().kind, expected) << result.code;
  EXPECT_FALSE(WorkerFailure::of({.outcome = exited, .code = 0}, "/worker"));
}

TEST(DocumentWorkerHost, SendsTheLargestRequestAndStartsNothingForALargerOne) {
  constexpr std::size_t bound = DocumentWorkerWire::maximumMessageBytes;
  constexpr std::size_t padding = 1000;  // to reach the bound to the byte
  DocumentWorkerRequest request = requestOf(std::string((bound - padding) / 4 * 3, 'x'));
  request.sourceName.append(bound - toJson(request).size(), 'x');
  EXPECT_NE(messageOf(replyOf("exit 65", request)).find("status 65"), std::string::npos);
  request.sourceName += 'x';
  const std::string tooLarge = "The document is too large: a request to the worker carries less than 30 MiB.";
  EXPECT_EQ(messageOf(replyOf("exit 65", request)), tooLarge);
  request.data = ByteBuffer::copyOf(std::string(DocumentWorkerHost::unsendableBytes, 'x'));
  EXPECT_EQ(messageOf(replyOf("exit 65", request)), tooLarge);
}

std::string listOf(std::size_t count, const std::string& element) {
  return "[" + testing::repeated(element + ",", count - 1) + element + "]";
}

TEST(DocumentWorkerHost, AcceptsOnlyWhatTheOperationCanReturn) {
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
  const auto document = [&](std::size_t warnings) {
    return R"(,"document":{"data":"","format":"docx","sourceSHA256":"",)" + validation(warnings) + "}";
  };
  using enum DocumentWorkerRequest::Operation;
  const std::string error = R"("error":"no")";
  const std::string noAnswer = "It does not answer the request.";
  const struct {
    DocumentWorkerRequest::Operation operation;
    std::string members;
    std::string detail;  ///< of the failure: a message, or the first element too many
  } rows[] = {
      {validate, error, ""},
      {create, error, ""},
      {validate, validation(1) + "," + error, noAnswer},
      {inspect, validation(1), noAnswer},
      {create, table(1, 1, 1, 1), noAnswer},
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
      {create, table(1, 1, 1, 1) + document(17), ""},
      {create, table(1, 1, 1, 1) + document(18), "document.validation.warnings[17]"},
  };
  for (const auto& row : rows) {
    const WorkerReply reply = replyOf("say {" + row.members + "}", requestOf("x", row.operation));
    const auto* failure = std::get_if<WorkerFailure>(&reply);
    const bool isList = row.detail.ends_with("]");
    EXPECT_EQ(failure != nullptr ? failure->detail : "", row.detail + (isList ? ": Too many elements." : ""));
  }
}

TEST(DocumentWorkerHost, CanBeUsedBySeveralThreads) {
  const DocumentWorkerHost host(REAL_WORKER);
  const std::string workbook = testing::contentOf(EXAMPLE_WORKBOOK);
  std::atomic<int> right = 0;
  const auto work = [&](int thread) {
    for (int i = 0; i < 4; ++i) {
      DocumentWorkerRequest request = requestOf(i == 3 ? "no workbook, but longer than 22 bytes" : workbook);
      request.sourceName = std::to_string(thread) + "-" + std::to_string(i);
      const WorkerReply reply = host.send(request);
      const auto* response = std::get_if<DocumentWorkerResponse>(&reply);
      right += response != nullptr &&
               (i == 3 ? response->error == "The document archive is invalid: missing ZIP directory"
                       : response->inspection && response->inspection->sourceName == request.sourceName);
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 6; ++thread)
    threads.emplace_back(work, thread);
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(right, 6 * 4);
}

}  // namespace
}  // namespace zelvo
