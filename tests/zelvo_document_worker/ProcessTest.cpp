// Owns the built worker as a process: confined, over real pipes, with inherited limits and filters.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;

constexpr std::size_t maximumMessageBytes = DocumentWorkerWire::maximumMessageBytes;
constexpr ChildBounds ample = {.outputBytes = 2 * maximumMessageBytes,
                               .wallClock = std::chrono::seconds(100)};

ChildResult runWorkerProcess(std::string_view input) {
  return runChildProcess({WORKER, {}}, input, ample);
}

/// Runs a script in which "$0" is the worker.
ChildResult runShell(const std::string& script, std::string_view input) {
  return runChildProcess({"/bin/sh", {"-c", script, WORKER}}, input, ample);
}

/// Expects an exit with the status and exactly this output.
void expectEnd(const ChildResult& result, int status, const std::string& output) {
  EXPECT_EQ(result.outcome, ChildOutcome::exited);
  EXPECT_EQ(result.code, status);
  EXPECT_EQ(result.output, output);
  EXPECT_EQ(result.errorOutput, "");
}

/// A request over the example workbook.
DocumentWorkerRequest exampleRequest(Operation operation, std::optional<DocumentFormat> format = {}) {
  return {.operation = operation,
          .data = ByteBuffer::copyOf(testing::contentOf(EXAMPLE_WORKBOOK)),
          .sourceName = "quarterly-sales.xlsx",
          .selection = TableSelection{.sheetName = "Quarter",
                                      .range = "A1:F6",
                                      .firstRowIsHeader = true,
                                      .allowCachedFormulaValues = true},
          .format = format,
          .title = "Quarter",
          .chart = ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = "Sales"}};
}

const std::string smallRequest = R"({"operation":"extract","data":"","sourceName":"a.xlsx"})";

TEST(WorkerProcess, UsesMemoryInProportionToTheRequest) {
  // Refused by its first bytes: what is measured is reading and decoding. Some writers escape the slash.
  constexpr std::string_view head = R"({"operation":"inspect","sourceName":"a.xlsx","data":"\/\/\/\/)";
  std::string input;
  input.reserve(maximumMessageBytes);
  input += head;
  input.append(maximumMessageBytes / 8 * 7, '/').append("\"}");
  const ChildResult result = runWorkerProcess(input);
  expectEnd(result, 0, R"({"error":"The document archive is invalid: missing ZIP directory"})");
#if !defined(ZELVO_SANITIZE)
  EXPECT_LT(result.peakMemoryBytes, std::uint64_t{input.size()} * 3 + (32U << 20));
#endif
}

TEST(WorkerProcess, FailsIfItCannotWrite) {
  // A regular file must not grow.
  expectEnd(runShell(R"(file=$(mktemp) && "$0" > "$file"; echo "$?, $(wc -c < "$file") bytes"; rm "$file")",
                     smallRequest),
            0, "65, 0 bytes\n");
  // The pipe's reader has ended before the worker gets its request.
  expectEnd(runShell(R"(exec 3>&1; { sleep 0.3; "$0"; echo "$?" >&3; } | true)", smallRequest), 0, "65\n");
}

TEST(WorkerProcess, AnswersUnderInheritedLimitsAndSettings) {
  const std::string requests[] = {toJson(exampleRequest(Operation::inspect)),
                                  toJson(exampleRequest(Operation::create, DocumentFormat::pptx))};
  // Who may raise a hard limit may set a lower ceiling of processor time to the worker's 45 seconds.
  const int underLowerCeiling = runShell("prlimit --cpu=44 prlimit --cpu=45 true", "").code == 0 ? 0 : 78;
  const std::pair<std::string, int> rows[] = {
    {"prlimit --fsize=0", 0},
    {"prlimit --fsize=100", 0},
    {"prlimit --nproc=0", 0},
    {"prlimit --cpu=45", 0},
    {"prlimit --cpu=44", underLowerCeiling},
    {"env TZ=:/etc/passwd LC_ALL=tr_TR.UTF-8 ICU_DATA=/tmp", 0},
    {"env GLIBC_TUNABLES=glibc.malloc.hugetlb=1", 0},
    {"env GLIBC_TUNABLES=glibc.malloc.hugetlb=2", 0},
#if !defined(ZELVO_SANITIZE)  // whose runtime needs more
    {"prlimit --stack=65536", 0},
    {"prlimit --data=33554432", 65},  // less than is reserved for a request
#endif
#if defined(STATIC_WORKER)  // whose start opens no library
    {"prlimit --nofile=0", 0},
#endif
  };
  for (const std::string& request : requests) {
    const std::string answer = runWorkerProcess(request).output;
    for (const auto& [start, status] : rows) {
      SCOPED_TRACE(start);
      expectEnd(runShell(start + R"( "$0" --help -v)", request), status, status == 0 ? answer : "");
    }
  }
}

TEST(WorkerProcess, ReadsNothingIfAParentPreventsConfinement) {
  for (const std::string mode : {"seccomp-fails", "seccomp-pretends", "prlimit-fails", "prlimit-pretends",
                                 "prctl-fails", "prctl-pretends"}) {
    SCOPED_TRACE(mode);
    // The request is still there for the next reader.
    expectEnd(runShell("{ " HOSTILE_PARENT " " + mode + R"( "$0"; echo " $?"; cat; })", smallRequest), 0,
              " 78\n" + smallRequest);
  }
}

}  // namespace
}  // namespace zelvo
