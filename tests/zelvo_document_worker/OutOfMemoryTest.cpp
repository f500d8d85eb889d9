// Owns failed allocations: each one of every operation, in the worker and in the authors of research results.
// Nothing is answered, nothing leaks, and no other error is reported.

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
#include "Support/Cases.hpp"
#include "Support/HeapUse.hpp"
#include "Text/Unicode.hpp"

#if ZELVO_SANITIZE
// The sanitizer's malloc cannot be replaced, so that only what C++ allocates fails here. Libraries in C are
// covered by the other builds.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return zelvo::testing::isNextAllocationToFail() ? nullptr : std::malloc(size);
}
void* operator new(std::size_t size) {
  if (void* const memory = operator new(size, std::nothrow)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
#endif

namespace zelvo {
namespace {

using enum DocumentWorkerRequest::Operation;
using Then = testing::FailingAllocation::Then;

const std::string outOfMemory = "out of memory";

struct Work {
  std::string name;
  std::function<std::string()> run;
};

/// Runs the worker. The fake process's own allocations are among those that fail, as if the worker had made
/// them.
Work workOf(std::string name, const DocumentWorkerRequest& request) {
  const auto run = [input = toJson(request)] {
    testing::FakeProcess process;
    process.input = input;
    const int status = process.run();
    if (status == 65 && process.count("write") == 0) return outOfMemory;
    return status == 0 ? process.output : "status " + std::to_string(status);
  };
  return {std::move(name), run};
}

// What the commands do with their inputs.
const std::string scopeText =
    R"({"localSnapshotIDs":["\u00e91"],"publicSources":{"b":"http://h/","b\u0065\u0301":"http://h/"},)"
    R"("records":[{"id":"b","kind":"publicPage","label":"Page \u00e9","observedAt":"2024-02-29T12:00:00Z",)"
    R"("coverage":"All","provenanceURL":"http://h/"}]})";
const std::string report =
    "# S\u00fcd\n\n|City|Sold|\n|:---|---:|\n| K\u00f6ln | 1,5 |\n|Graz|-0.25|\n\nText\n";
const std::string deck =
    R"({"title":"S\u00fcd","report":"Sum","slides":[{"title":"Cover","body":["c"],"sources":["http://h/"]},)"
    R"({"title":"Chart","body":["k"],"sources":[],"chartIndex":0},)"
    R"({"title":"Points","body":["p","q \u05d0"],"sources":["http://h/"]}]})";

std::string datasetText() {
  ResearchSpreadsheet data = testing::yearlyProfit();
  data.report = report;
  for (auto& row : data.rows) {
    row.sources = {"http://h/"};
    row.sourceIDs = {"b"};
  }
  return data.encoded();
}

ResearchSourceScope scope() {
  return researchSourceScopeFromJson(scopeText);
}

/// These need every library, and every kind of question about texts.
std::vector<Work> smallWorks() {
  const std::string text = "S\u00fcd \U0001F469\u200d\U0001F469\u200d\U0001F467 e\u0301";
  return {
      workOf("inspect", testing::completeRequest(inspect)),
      {"check dataset",
       [data = datasetText()] {
         return toJson(ResearchSpreadsheet::decode(data, false, {}, scope()).resolvedCells());
       }},
      {"report workbook",
       [] { return std::string(ResearchWorkbook::make("Title", report, {"http://h/"}).text()); }},
      {"characters", [=] { return std::to_string(Unicode::characterCount(text)); }},
      {"case", [=] { return Unicode::lowercased(text) + Unicode::uppercased(text); }},
      {"composition", [=] { return Unicode::composed(text); }},
  };
}

std::vector<Work> allWorks() {
  std::vector<Work> works = smallWorks();
  DocumentWorkerRequest extraction = testing::completeRequest(extract);
  extraction.selection = {.sheetName = "Sales", .range = "A1:E4", .allowCachedFormulaValues = true};
  works.push_back(workOf("extract", extraction));
  works.push_back(workOf("create Word document", testing::completeRequest(create, DocumentFormat::docx)));
  works.push_back(workOf("create presentation", testing::completeRequest(create)));
  works.push_back(workOf("validate", testing::validationOfCreated()));
  works.push_back({"dataset workbook", [data = datasetText()] {
                     const auto dataset = ResearchSpreadsheet::decode(data, false, {}, scope());
                     return std::string(ResearchWorkbook::make("Title", dataset, {}, scope()).text());
                   }});
  works.push_back({"research presentation", [data = datasetText()] {
                     const auto dataset = fromJson<ResearchSpreadsheet>(data);
                     const auto presentation = ResearchPresentation::decode(deck, {}, dataset, scope());
                     return std::string(renderPresentation(presentation, 4, scope()).text());
                   }});
  return works;
}

/// What the work returns, or its error, when one allocation fails, or it and all that follow; none when the
/// work takes fewer.
std::optional<std::string> outcomeWithout(std::size_t allocation, Then then, const Work& work) {
  const testing::FailingAllocation failing(allocation, then);
  std::string outcome = outOfMemory;
  try {
    outcome = work.run();
  } catch (const std::bad_alloc&) {
    // expected
  } catch (const std::exception& error) {
    outcome = error.what();
  }
  if (!failing.hasFailed()) return std::nullopt;
  return outcome;
}

/// The standard library can do without some of its memory. Then the result is as it should be.
bool isRight(const std::string& outcome, const std::string& expected) {
  return outcome == outOfMemory || outcome == expected;
}

TEST(OutOfMemory, NothingIsAnsweredAndNothingLeaksWhicheverAllocationFails) {
  for (const Work& work : allWorks()) {
    const std::string expected = work.run();
    ASSERT_FALSE(expected.empty() || expected.starts_with(R"({"error")")) << expected;
    // What is made once and kept has been made by now, but for what the first exception takes.
    ASSERT_TRUE(outcomeWithout(0, Then::succeed, work) || expected.size() < 80) << work.name;
    for (std::size_t allocation = 0;; ++allocation) {
      const std::size_t blocks = testing::liveBlocks();
      {
        const auto outcome = outcomeWithout(allocation, Then::succeed, work);
        if (!outcome) break;
        ASSERT_TRUE(isRight(*outcome, expected)) << work.name << ", " << allocation << ": " << *outcome;
      }
      ASSERT_EQ(testing::liveBlocks(), blocks) << work.name << ", " << allocation;
    }
  }
}

// A sanitizer's processes take long to copy.
#if !ZELVO_SANITIZE
TEST(OutOfMemory, AProcessThatHasJustStartedEndsInNoOtherWay) {
  // What libraries make once and keep is made while memory runs out: in copies of a process that has not done
  // such work yet.
  enum Status { fewerAllocations, right, wrong };
  for (const Work& work : smallWorks()) {
    for (const auto then : {Then::succeed, Then::fail}) {
      int status = right;
      for (std::size_t allocation = 0; status != fewerAllocations; ++allocation) {
        const pid_t child = fork();
        if (child == 0) {
          const auto outcome = outcomeWithout(allocation, then, work);
          _exit(!outcome ? fewerAllocations : isRight(*outcome, work.run()) ? right : wrong);
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

TEST(Decoding, TakesMemoryInProportionToTheText) {
  const std::string head =
      R"({"operation":"validate","data":"","sourceName":"","expectedTable":{"sourceName":"","sourceSHA256":"",)"
      R"("sheetName":"","selectedRange":"","headerUsesCachedFormulaValues":false)";
  constexpr std::size_t listBytes = 512 << 10;  // of what is kept of lists
  for (const auto& [list, element, end] : testing::cases<3>(R"(
      "columns":[ => "" => ]
      "rows":[ => [] => ]
      "rows":[[ => {"address":"","value":{"missing":{}},"usesCachedFormulaValue":false,"hidden":false} => ]]
      "more":[ => 0 => ]
      "more":[ => [0] => ]
      "more":{ => "":0 => })")) {
    std::string text = head + "," + list + element;
    while (text.size() < 1 << 20)
      text.append(",").append(element);
    text += end;
    for (const std::string key : {R"("columns":[)", R"("rows":[)", R"("warnings":[)"}) {
      if (!list.starts_with(key)) text += "," + key + "]";
    }
    text += "}}";
    const testing::HeapLimit limit(2 * text.size() + listBytes);
    EXPECT_TRUE(fromJson<DocumentWorkerRequest>(std::move(text)).expectedTable) << element;
  }
}

}  // namespace
}  // namespace zelvo
