// Every allocation of every operation fails once, in the worker and in the authors of research results:
// nothing is answered, nothing leaks, and no other error is reported.

#include <array>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Research/Dataset/FormulaEvaluator.hpp"
#include "DocumentRuntime/Research/Dataset/SpreadsheetCoding.hpp"
#include "DocumentRuntime/Research/Datasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/Coding.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScopeCoding.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "FakeProcess.hpp"
#include "Support/HeapUse.hpp"
#include "Support/PackageBuilder.hpp"
#include "Text/Unicode.hpp"
#include "zelvo_document_worker/Dispatcher.hpp"

#if ZELVO_SANITIZE
// The sanitizer's malloc cannot be replaced, so that only what C++ allocates fails here. Libraries in C are
// covered by the other builds.
void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
  return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return zelvo::testing::isNextAllocationToFail() ? nullptr : std::malloc(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
#endif

namespace zelvo {
namespace {

using Operation = DocumentWorkerRequest::Operation;
using Then = testing::FailingAllocation::Then;

const std::string outOfMemory = "out of memory";

struct Work {
  std::string name;
  std::function<std::string()> run;
};

/// The response, or that there is none. The fake process's own allocations are among those that fail, as if
/// the worker had made them.
std::string answer(const std::string& request) {
  testing::FakeProcess process;
  process.input = request;
  const int status = process.run();
  if (status == 65 && process.count("write") == 0) return outOfMemory;
  return status == 0 ? process.output : "status " + std::to_string(status);
}

DocumentWorkerRequest requestOf(Operation operation, DocumentFormat format = DocumentFormat::docx) {
  DocumentWorkerRequest request;
  request.operation = operation;
  testing::WorkbookText workbook = testing::richWorkbook();
  workbook.sheets.back().name = "S\u00fcd";
  request.data = ByteBuffer::copyOf(testing::workbookPackage(workbook).archive().bytes());
  request.sourceName = "a workbook with a name that is not short.xlsx";
  request.selection = {.sheetName = "Sales", .range = "A1:B2", .firstRowIsHeader = true};
  request.format = format;
  // Its characters have to be counted.
  request.title = testing::repeated("S\u00fcd \U0001F469\u200d\U0001F469\u200d\U0001F467", 8);
  request.chart = {.categoryColumn = 0, .valueColumn = 1, .title = "Revenue"};
  return request;
}

Work workOf(std::string name, const DocumentWorkerRequest& request) {
  return {std::move(name), [input = toJson(request)] { return answer(input); }};
}

DocumentWorkerRequest extraction() {
  DocumentWorkerRequest request = requestOf(Operation::extract);
  request.selection = {.sheetName = "Sales", .range = "A1:E4", .allowCachedFormulaValues = true};
  return request;
}

DocumentWorkerRequest validation() {
  DocumentWorkerResponse created = run(requestOf(Operation::create));
  DocumentWorkerRequest request = requestOf(Operation::validate);
  request.data = std::move(created.document->data);
  request.expectedTable = std::move(created.table);
  return request;
}

/// What the commands do with their inputs.
struct Research {
  std::string scope =
      R"({"localSnapshotIDs":["\u00e91"],"publicSources":{"b":"http://h/","b\u0065\u0301":"http://h/"},)"
      R"("records":[{"id":"b","kind":"publicPage","label":"Page \u00e9","observedAt":"2024-02-29T12:00:00Z",)"
      R"("coverage":"All","provenanceURL":"http://h/"}]})";
  std::string report = "# S\u00fcd\n\n|City|Sold|\n|:---|---:|\n| K\u00f6ln | 1,5 |\n|Graz|-0.25|\n\nText\n";
  std::string dataset = [this] {
    ResearchSpreadsheet data = testing::yearlyProfit();
    data.report = report;
    for (auto& row : data.rows) {
      row.sources = {"http://h/"};
      row.sourceIDs = {"b"};
    }
    return data.encoded();
  }();
  std::string deck =
      R"({"title":"S\u00fcd","report":"Sum","slides":[{"title":"Cover","body":["c"],"sources":["http://h/"]},)"
      R"({"title":"Chart","body":["k"],"sources":[],"chartIndex":0},)"
      R"({"title":"Points","body":["p","q \u05d0"],"sources":["http://h/"]}]})";

  ResearchSpreadsheet checkedDataset() const {
    return ResearchSpreadsheet::decode(dataset, false, {}, researchSourceScopeFromJson(scope));
  }
  std::string check() const { return toJson(checkedDataset().resolvedCells()); }
  std::string workbook() const {
    return std::string(
        ResearchWorkbook::make("Title", checkedDataset(), {}, researchSourceScopeFromJson(scope)).text());
  }
  std::string reportWorkbook() const {
    return std::string(ResearchWorkbook::make("Title", report, {"http://h/"}).text());
  }
  std::string presentation() const {
    const auto parsedScope = researchSourceScopeFromJson(scope);
    const auto presentation =
        ResearchPresentation::decode(deck, {}, fromJson<ResearchSpreadsheet>(dataset), parsedScope);
    return std::string(renderPresentation(presentation, 4, parsedScope).text());
  }
};

/// What the work returns, or the message of its error.
std::string outcomeOf(const Work& work) {
  try {
    return work.run();
  } catch (const std::bad_alloc&) {
    return outOfMemory;
  } catch (const std::exception& error) {
    return error.what();
  }
}

/// The outcome when one allocation fails, or it and all that follow; none when the work takes fewer.
std::optional<std::string> outcomeWithout(std::size_t allocation, Then then, const Work& work) {
  const testing::FailingAllocation failing(allocation, then);
  std::string outcome = outcomeOf(work);
  if (!failing.hasFailed()) return std::nullopt;
  return outcome;
}

/// The standard library can do without some of its memory. Then the result is as it should be.
bool isRight(const std::string& outcome, const std::string& expected) {
  return outcome == outOfMemory || outcome == expected;
}

TEST(OutOfMemory, WhicheverAllocationFailsNothingIsAnsweredAndNothingLeaks) {
  const Research research;
  const std::vector<Work> works = {
      workOf("inspect", requestOf(Operation::inspect)),
      workOf("extract", extraction()),
      workOf("create Word document", requestOf(Operation::create)),
      workOf("create presentation", requestOf(Operation::create, DocumentFormat::pptx)),
      workOf("validate", validation()),
      {"check dataset", [&] { return research.check(); }},
      {"dataset workbook", [&] { return research.workbook(); }},
      {"report workbook", [&] { return research.reportWorkbook(); }},
      {"research presentation", [&] { return research.presentation(); }},
  };
  for (const Work& work : works) {
    const std::string expected = outcomeOf(work);
    ASSERT_GT(expected.size(), 80U) << expected;
    ASSERT_FALSE(expected.starts_with(R"({"error")")) << expected;
    // What is made once and kept has been made by now, but for what the first exception takes.
    ASSERT_TRUE(outcomeWithout(0, Then::succeed, work));
    for (std::size_t allocation = 0;; ++allocation) {
      SCOPED_TRACE(work.name + ", allocation " + std::to_string(allocation));
      const std::size_t blocks = testing::liveBlocks();
      {
        const auto outcome = outcomeWithout(allocation, Then::succeed, work);
        if (!outcome) break;
        ASSERT_TRUE(isRight(*outcome, expected)) << *outcome;
      }
      ASSERT_EQ(testing::liveBlocks(), blocks);
    }
  }
}

// A sanitizer's processes take long to copy.
#if !ZELVO_SANITIZE
TEST(OutOfMemory, AProcessThatHasJustStartedEndsInNoOtherWay) {
  // What libraries make once and keep is made while memory runs out: in copies of a process that has not done
  // such work yet. These few need every library, and every kind of question about texts.
  const std::string text = "S\u00fcd \U0001F469\u200d\U0001F469\u200d\U0001F467 e\u0301";
  const Research research;
  const Work works[] = {
      workOf("inspect", requestOf(Operation::inspect)),
      {"check dataset", [&] { return research.check(); }},
      {"report workbook", [&] { return research.reportWorkbook(); }},
      {"characters", [&] { return std::to_string(Unicode::characterCount(text)); }},
      {"case", [&] { return Unicode::lowercased(text) + Unicode::uppercased(text); }},
      {"composition", [&] { return Unicode::composed(text); }},
  };
  enum Status { fewerAllocations, right, wrong };
  for (const Work& work : works) {
    for (const auto then : {Then::succeed, Then::fail}) {
      int status = right;
      for (std::size_t allocation = 0; status != fewerAllocations; ++allocation) {
        const pid_t child = fork();
        if (child == 0) {
          const auto outcome = outcomeWithout(allocation, then, work);
          _exit(!outcome ? fewerAllocations : isRight(*outcome, outcomeOf(work)) ? right : wrong);
        }
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << work.name << ", allocation " << allocation << ": " << status;
        status = WEXITSTATUS(status);
        ASSERT_NE(status, wrong) << work.name << ", allocation " << allocation;
      }
    }
  }
}
#endif

// The text itself is a third of the allowance.
TEST(Decoding, TakesMemoryInProportionToTheText) {
  const std::string head =
      R"({"operation":"validate","data":"","sourceName":"","expectedTable":{"sourceName":"","sourceSHA256":"",)"
      R"("sheetName":"","selectedRange":"","headerUsesCachedFormulaValues":false,)";
  const std::string cell =
      R"({"address":"","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false})";
  constexpr std::size_t textBytes = 1 << 20;
  constexpr std::size_t listBytes = 512 << 10;  // of what is kept of lists
  for (const auto& [list, element, tail] : {
           std::array<std::string, 3>{R"("rows":[],"warnings":[],"columns":[)", R"("")", "]}}"},
           {R"("columns":[],"rows":[],"warnings":[)", R"("")", "]}}"},
           {R"("columns":[],"warnings":[],"rows":[)", "[]", "]}}"},
           {R"("columns":[],"warnings":[],"rows":[[)", cell, "]]}}"},
           {R"("columns":[],"warnings":[],"rows":[],"more":[)", "0", "]}}"},
           {R"("columns":[],"warnings":[],"rows":[],"more":[)", "[0]", "]}}"},
           {R"("columns":[],"warnings":[],"rows":[],"more":{)", R"("":0)", "}}}"},
       }) {
    std::string text = head + list + element;
    while (text.size() < textBytes)
      text.append(",").append(element);
    text += tail;
    const testing::HeapLimit limit(2 * text.size() + listBytes);
    EXPECT_TRUE(fromJson<DocumentWorkerRequest>(std::move(text)).expectedTable) << element;
  }
}

}  // namespace
}  // namespace zelvo
