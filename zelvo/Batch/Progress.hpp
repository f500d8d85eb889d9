#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// What a batch has done so far.
struct BatchCounts {
  std::int64_t answered = 0;
  std::int64_t refused = 0;
  std::int64_t failed = 0;
  std::int64_t skipped = 0;  ///< finished by an earlier run

  std::int64_t done() const { return answered + refused + failed; }
};

/// "1,234 of 10,000 files, 83 a second, 1 m 45 s left, 12 refused, 0 failed", with a bar before it. `total`
/// is the number of files of this run; without it neither bar nor remaining time is known.
std::string progressLine(const BatchCounts& counts, std::optional<std::int64_t> total,
                         std::chrono::duration<double> elapsed);

/// "10,000 files in 2 m 3 s, 81 a second: 9,800 answered, 190 refused, 10 failed"
std::string totalsLine(const BatchCounts& counts, std::chrono::duration<double> elapsed);

/// Shows the progress on standard error while it is a terminal, in one line that is written again.
class ProgressDisplay {
 public:
  using Clock = std::chrono::steady_clock;

  explicit ProgressDisplay(bool isQuiet);

  bool isShown() const { return isShown_; }
  std::chrono::duration<double> elapsed() const { return Clock::now() - start_; }

  /// At most ten times a second.
  void update(const BatchCounts& counts, std::optional<std::int64_t> total);
  /// Removes the line, so that others can be written.
  void clear();

 private:
  Clock::time_point start_ = Clock::now();
  Clock::time_point next_ = start_;
  bool isShown_;
};

}  // namespace zelvo
