// Owns failed allocations: each one of every operation, in the worker and in the authors of research results.
// Nothing is answered, nothing leaks, and no other error is reported.

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
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "FakeProcess.hpp"
#include "Support/HeapUse.hpp"

namespace zelvo {
namespace {

using enum DocumentWorkerRequest::Operation;
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

const std::string deck =
    R"({"title":"S\u00fcd","report":"Sum","slides":[{"title":"Cover","body":["c"],"sources":["http://h/"]},)"
    R"({"title":"Chart","body":["k"],"sources":[],"chartIndex":0},)"
    R"({"title":"Points","body":["p","q \u05d0"],"sources":["http://h/"]}]})";

ResearchSpreadsheet datasetOf(const std::string& text) {
  return ResearchSpreadsheet::decode(text, false, {}, {});
}

std::vector<Work> allWorks() {
  ResearchSpreadsheet data = testing::yearlyProfit();
  for (auto& row : data.rows)
    row.sources = {"http://h/"};
  DocumentWorkerRequest extraction = testing::completeRequest(extract);
  extraction.selection = {.sheetName = "Sales", .range = "A1:E4", .allowCachedFormulaValues = true};
  return {
      workOf("inspect", testing::completeRequest(inspect)),
      workOf("extract", extraction),
      workOf("create Word document", testing::completeRequest(create, DocumentFormat::docx)),
      workOf("create presentation", testing::completeRequest(create)),
      workOf("validate", testing::validationOfCreated()),
      {"dataset workbook",
       [text = data.encoded()] {
         return std::string(ResearchWorkbook::make("Title", datasetOf(text), {}, {}).text());
       }},
      {"research presentation",
       [text = data.encoded()] {
         const auto presentation = ResearchPresentation::decode(deck, {}, datasetOf(text), {});
         return std::string(renderPresentation(presentation, 4, {}).text());
       }},
  };
}

/// What the work returns, or its error, when one allocation fails; none when the work takes fewer.
std::optional<std::string> outcomeWithout(std::size_t allocation, const Work& work) {
  const testing::FailingAllocation failing(allocation);
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

TEST(OutOfMemory, NothingIsAnsweredAndNothingLeaksWhicheverAllocationFails) {
  for (const Work& work : allWorks()) {
    const std::string expected = work.run();
    ASSERT_FALSE(expected.empty() || expected.starts_with(R"({"error")")) << expected;
    // What is made once and kept has been made by now, but for what the first exception takes.
    ASSERT_TRUE(outcomeWithout(0, work)) << work.name;
    for (std::size_t allocation = 0;; ++allocation) {
      const std::size_t blocks = testing::liveBlocks();
      {
        const auto outcome = outcomeWithout(allocation, work);
        if (!outcome) break;
        // The standard library can do without some of its memory. Then the result is as it should be.
        ASSERT_TRUE(outcome == outOfMemory || outcome == expected) << work.name << ", " << allocation;
      }
      ASSERT_EQ(testing::liveBlocks(), blocks) << work.name << ", " << allocation;
    }
  }
}

TEST(OutOfMemory, AProcessThatHasJustStartedEndsInNoOtherWay) {
  // What libraries make once and keep is made while memory runs out: in copies of a process that has not done
  // such work yet.
  enum Status { fewerAllocations, right, wrong };
  const Work work = workOf("inspect", testing::completeRequest(inspect));
  int status = right;
  for (std::size_t allocation = 0; status != fewerAllocations; ++allocation) {
    const pid_t child = fork();
    if (child == 0) {
      const auto outcome = outcomeWithout(allocation, work);
      _exit(!outcome ? fewerAllocations : outcome == outOfMemory || outcome == work.run() ? right : wrong);
    }
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "allocation " << allocation << ": " << status;
    status = WEXITSTATUS(status);
    ASSERT_NE(status, wrong) << "allocation " << allocation;
  }
}

}  // namespace
}  // namespace zelvo
