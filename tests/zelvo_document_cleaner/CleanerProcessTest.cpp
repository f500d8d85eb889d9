// Owns the built cleaner, confined, over real pipes, and its host.

#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "DocumentWorkerHost/DocumentCleanerHost.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "Support/FakeWorker.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using Kind = WorkerFailure::Kind;

constexpr ChildBounds ample = {.outputBytes = 2 * DocumentWorkerWire::maximumMessageBytes,
                               .wallClock = std::chrono::seconds(100)};

DocumentCleanerRequest requestOf(std::string_view workbook) {
  return {.sourceName = "book.xlsx", .data = ByteBuffer::copyOf(workbook)};
}

TEST(CleanerProcess, CleansForTheWorker) {
  auto package = testing::workbookPackage(testing::richWorkbook());
  package.part("xl/media/image1.png").text = "picture";
  const auto inspect = [](ByteBuffer data) {
    WorkerReply reply =
        DocumentWorkerHost(WORKER).send({.operation = DocumentWorkerRequest::Operation::inspect,
                                         .data = std::move(data),
                                         .sourceName = "b.xlsx"});
    return std::get<DocumentWorkerResponse>(std::move(reply));
  };
  const ByteBuffer source = package.bytes();
  EXPECT_EQ(inspect(ByteBuffer::copyOf(source.view())).error,
            "This document feature is not supported yet: non-XML package part");

  const CleanerReply reply = DocumentCleanerHost(CLEANER).send(requestOf(source.text()));
  const auto& response = std::get<DocumentCleanerResponse>(reply);
  ASSERT_TRUE(response.document && response.report) << response.error.value_or("");
  EXPECT_EQ(droppedInWords(*response.report), "1 picture, 1 phonetic run");
  EXPECT_EQ(inspect(ByteBuffer::copyOf(response.document->data.view())).inspection->sourceSHA256,
            response.document->outputSHA256);
}

TEST(CleanerProcess, AnswersWithRefusalsButNotToUnusableRequests) {
  const std::pair<std::string, std::string> answers[] = {
      {R"({"version":1,"sourceName":"a","data":""})",
       R"({"error":"The document exceeds a safe processing limit: archive size"})"},
      {R"({"version":2,"sourceName":"a","data":""})",
       R"({"error":"This document feature is not supported yet: request version 2"})"},
      {"{", ""},
      {R"({"sourceName":"a","data":""})", ""},
  };
  for (const auto& [request, expected] : answers) {
    const ChildResult result = runChildProcess({CLEANER, {}}, request, ample);
    EXPECT_EQ(result.outcome, ChildOutcome::exited) << request;
    EXPECT_EQ(result.code, expected.empty() ? 65 : 0) << request;
    EXPECT_EQ(result.output, expected);
    EXPECT_EQ(result.errorOutput, "");
  }
  for (const std::string mode : {"seccomp-fails", "prlimit-pretends"}) {
    const ChildResult result = runChildProcess({HOSTILE_PARENT, {mode, CLEANER}}, answers[0].first, ample);
    EXPECT_EQ(result.code, 78) << mode;
  }
}

TEST(CleanerProcess, StaysWithinItsMemoryWhenAFormulaGrows) {
  std::string rows =
      "<row><c><f t='shared' si='0' ref='A1'>" + testing::repeated("A$1+", 2'000) + "1</f></c></row>";
  for (int i = 1; i < 50'000; ++i)
    rows += "<row><c><f t='shared' si='0'/></c></row>";
  const auto package = testing::workbookPackage(testing::plainWorkbook(rows));
  const std::string input = toJson(requestOf(package.archive().bytes()));
  const ChildResult result = runChildProcess({CLEANER, {}}, input, ample);
  EXPECT_EQ(result.code, 0);
  EXPECT_NE(result.output.find("more than 16 MiB of XML in sheet Data, written out up to cell A"),
            std::string::npos)
      << result.output.substr(0, 300);
#if !defined(ZELVO_SANITIZE)
  EXPECT_LT(result.peakMemoryBytes,
            std::uint64_t{input.size()} * 3 + std::uint64_t{rows.size()} * 3 + 2 * (16U << 20) + (32U << 20));
#endif
}

TEST(CleanerHost, AcceptsOnlyWholeResponses) {
  const std::string whole =
      R"({"version":1,"document":{"data":"","sourceSHA256":"","outputSHA256":""},"report":{"sheets":[],)"
      R"("dropped":[{"kind":"","count":1,"parts":[""]}],"changed":[]}})";
  const auto parts = [](std::size_t count) { return testing::repeated("\"\",", count - 1) + "\"\"]"; };
  const std::tuple<std::string, std::string, bool> rows[] = {
      {"1", "1", true},
      {"\"\"]", parts(512), true},
      {"\"\"]", parts(513), false},
      {"version\":1", "version\":2", false},
      {"\"version\":1,", "", false},
      {"\"document", "\"other", false},
      {"\"report", "\"other", false},
      {"\"version\":1,", "\"error\":\"no\",", false},
      {whole, R"({"error":"no"})", true},
      {whole, R"({"version":1,"error":"no"})", false},
      {whole, "{}", false},
  };
  const testing::TemporaryFolder folder;
  for (const auto& [from, to, isAccepted] : rows) {
    const std::string response = testing::replaced(whole, from, to);
    const DocumentCleanerHost host(testing::placeFakeWorker(folder, "say " + response));
    const CleanerReply reply = host.send(requestOf("x"));
    EXPECT_EQ(std::holds_alternative<DocumentCleanerResponse>(reply), isAccepted) << response.substr(0, 100);
  }
  const DocumentCleanerHost missing("/none");
  EXPECT_EQ(std::get<WorkerFailure>(missing.send(requestOf("x"))).kind, Kind::notFound);
  const std::string unsendable(DocumentWorkerHost::unsendableBytes, 'x');
  EXPECT_EQ(std::get<WorkerFailure>(missing.send(requestOf(unsendable))).kind, Kind::requestTooLarge);
}

}  // namespace
}  // namespace zelvo
