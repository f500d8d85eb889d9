// Owns the texts and names of a batch; run_batches.py owns its runs.

#include <string>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "zelvo/Batch/BatchFiles.hpp"
#include "zelvo/Batch/Progress.hpp"

namespace zelvo {
namespace {

TEST(Batch, SaysHowFarItIs) {
  for (const auto& [answered, refused, failed, total, seconds, line] : testing::cases<6>(R"(
      0 | 0 | 0 | 10 | 0 | [                    ] 0 of 10 files, 0 a second, 0 refused, 0 failed
      6 | 2 | 1 | 10 | 3 | [##################  ] 9 of 10 files, 3 a second, 0 s left, 2 refused, 1 failed
      1 | 0 | 0 | 1 | 1 | [####################] 1 of 1 file, 1 a second, 0 s left, 0 refused, 0 failed
      1000 | 1000 | 0 | 3000 | 59 | [#############       ] 2,000 of 3,000 files, 34 a second, 29 s left, 1,000 refused, 0 failed
      1 | 0 | 0 | 60 | 1 | [                    ] 1 of 60 files, 1 a second, 59 s left, 0 refused, 0 failed
      1 | 0 | 0 | 61 | 1 | [                    ] 1 of 61 files, 1 a second, 1 m 0 s left, 0 refused, 0 failed
      1 | 0 | 0 | 3600 | 1 | [                    ] 1 of 3,600 files, 1 a second, 59 m 59 s left, 0 refused, 0 failed
      1 | 0 | 0 | 7261 | 1 | [                    ] 1 of 7,261 files, 1 a second, 2 h 1 m left, 0 refused, 0 failed
      5 | 0 | 0 | 4 | 1 | [####################] 5 of 4 files, 5 a second, 0 s left, 0 refused, 0 failed
      5 | 0 | 0 | | 1 | 5 files, 5 a second, 0 refused, 0 failed)")) {
    const auto known = total.empty() ? std::nullopt : std::optional<std::int64_t>(std::stol(total));
    const BatchCounts counts = {std::stol(answered), std::stol(refused), std::stol(failed)};
    EXPECT_EQ(progressLine(counts, known, std::chrono::duration<double>(std::stol(seconds))), line);
  }
  EXPECT_EQ(
      totalsLine({9'800, 190, 10, 1}, std::chrono::seconds(123)),
      "10,000 files in 2 m 3 s, 81 a second: 9,800 answered, 190 refused, 10 failed, 1 finished before");
}

TEST(Batch, NamesCleanedWorkbooksInsideTheFolder) {
  for (const auto& [name, cleaned] : testing::cases<2>(R"(
      a.xlsx => a.xlsx ; b/A.XLSM => b/A.xlsx ; ./c/./d.xltx => c/d.xlsx ; e.zip => e.zip.xlsx ; x => x.xlsx
      ../a.xlsx => none ; a/../b.xlsx => none ; a/.. => none ; /a.xlsx => none)"))
    EXPECT_EQ(cleanedName(name).value_or("none"), cleaned) << name;
}

}  // namespace
}  // namespace zelvo
