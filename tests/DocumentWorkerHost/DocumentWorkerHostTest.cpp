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
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 34999ms}, Kind::killed},
      {{.outcome = killed, .code = SIGKILL, .cpuTime = 35s}, Kind::cpuTimeUsedUp},
      {{.outcome = killed, .code = SIGSYS, .inputBytesRead = 1}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSYS}, Kind::brokenInvariant},
      {{.outcome = killed, .code = SIGSEGV, .cpuTime = 45s}, Kind::crashed},
      {{.outcome = failed, .code = EMFILE}, Kind::notRun},
      {runChildProcess({HOSTILE_PARENT, {"ptrace-kills", WORKER}}, std::string(5'000'000, ' '), {1, 60s}),
       Kind::killedBeforeReading},
  };
  for (const auto& [result, expected] : rows)
    EXPECT_EQ(WorkerFailure::of(result, "/worker").value().kind, expected) << result.code;
  EXPECT_FALSE(WorkerFailure::of({.outcome = exited, .code = 0}, "/worker"));
  const ChildResult verbose = {.outcome = exited, .code = 1, .errorOutput = std::string(201, 'x')};
  EXPECT_EQ(WorkerFailure::of(verbose, "/worker").value().detail, std::string(200, 'x'));
  EXPECT_EQ(
      WorkerFailure{Kind::brokenInvariant}.message(),
      "The worker was killed by its seccomp filter (SIGSYS): it made a forbidden system call. This is a "
      "defect or an attack; the confinement held.");
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

TEST(DocumentWorkerHost, AcceptsOnlyWhatTheOperationCanReturn) {
  /// The lengths of the lists in a response; `rows` are sheets or rows.
  struct Lengths {
    std::size_t rows = 1, columns = 1, cells = 1, warnings = 1;
  };
  const std::string noAnswer = "It does not answer the request.";
  const struct {
    DocumentWorkerRequest::Operation operation;
    std::string results;
    Lengths lengths;
    std::string detail;  ///< of the failure: a message, or the first element too many
  } rows[] = {
      {validate, "error", {}, ""},
      {create, "error", {}, ""},
      {validate, "error validation", {}, noAnswer},
      {inspect, "validation", {}, noAnswer},
      {create, "table", {}, noAnswer},
      {inspect, "inspection", {64, 1, 1, 17}, ""},
      {inspect, "inspection", {65}, "inspection.sheets[64]"},
      {inspect, "inspection", {1, 1, 1, 18}, "inspection.warnings[17]"},
      {extract, "table", {201, 8, 8, 17}, ""},
      {extract, "table", {1, 9}, "table.columns[8]"},
      {extract, "table", {202}, "table.rows[201]"},
      {extract, "table", {1, 1, 9}, "table.rows[0][8]"},
      {extract, "table", {1, 1, 1, 18}, "table.warnings[17]"},
      {validate, "validation", {1, 1, 1, 17}, ""},
      {validate, "validation", {1, 1, 1, 18}, "validation.warnings[17]"},
      {create, "table document", {1, 1, 1, 17}, ""},
      {create, "document", {1, 1, 1, 18}, "document.validation.warnings[17]"},
  };
  for (const auto& row : rows) {
    const auto [count, columns, cells, warnings] = row.lengths;
    DocumentWorkerResponse response;
    for (const std::string& result : testing::words(row.results)) {
      if (result == "error") response.error = "no";
      if (result == "inspection") response.inspection.emplace().sheets.resize(count);
      if (result == "inspection") response.inspection->warnings.resize(warnings);
      if (result == "table") response.table.emplace().columns.resize(columns);
      if (result == "table") response.table->rows.assign(count, std::vector<SourceCell>(cells));
      if (result == "table") response.table->warnings.resize(warnings);
      if (result == "document") response.document.emplace().validation.warnings.resize(warnings);
      if (result == "validation") response.validation.emplace().warnings.resize(warnings);
    }
    const WorkerReply reply = replyOf("say " + toJson(response), requestOf("x", row.operation));
    const auto* failure = std::get_if<WorkerFailure>(&reply);
    const bool isList = row.detail.ends_with("]");
    EXPECT_EQ(failure != nullptr ? failure->detail : "", row.detail + (isList ? ": Too many elements." : ""));
  }
}

TEST(DocumentWorkerHost, CanBeUsedBySeveralThreads) {
  const DocumentWorkerHost host(WORKER);
  const std::string workbook = testing::contentOf(EXAMPLE_WORKBOOK);
  std::atomic<int> right = 0;
  const auto work = [&](int thread) {
    for (int i = 0; i < 4; ++i) {
      DocumentWorkerRequest request = requestOf(workbook);
      request.sourceName = std::to_string(thread) + "-" + std::to_string(i);
      const WorkerReply reply = host.send(request);
      const auto* response = std::get_if<DocumentWorkerResponse>(&reply);
      right += response != nullptr && response->inspection.value().sourceName == request.sourceName;
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
