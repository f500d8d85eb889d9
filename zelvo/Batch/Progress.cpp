#include "zelvo/Batch/Progress.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <unistd.h>

#include "Text/ASCII.hpp"

namespace zelvo {
namespace {

constexpr std::chrono::milliseconds interval{100};
constexpr std::int64_t barWidth = 20;
/// Back to the first column, and erase to the end of the line: standard sequences of terminals.
constexpr const char* lineStart = "\r\033[K";

std::string grouped(std::int64_t number) {
  return ASCII::grouped(std::to_string(number));
}

std::string files(std::int64_t count) {
  return grouped(count) + (count == 1 ? " file" : " files");
}

/// "45 s", "1 m 45 s", "2 h 3 m"
std::string duration(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::llround(seconds));
  if (whole < 60) return std::to_string(whole) + " s";
  if (whole < 3600) return std::to_string(whole / 60) + " m " + std::to_string(whole % 60) + " s";
  return grouped(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " m";
}

double perSecond(std::int64_t count, std::chrono::duration<double> elapsed) {
  constexpr double shortest = 1e-3;  // no division by 0
  return static_cast<double>(count) / std::max(elapsed.count(), shortest);
}

std::string rate(std::int64_t count, std::chrono::duration<double> elapsed) {
  return grouped(std::llround(perSecond(count, elapsed))) + " a second";
}

std::string bar(std::int64_t done, std::int64_t total) {
  const std::int64_t filled =
      std::clamp<std::int64_t>(done * barWidth / std::max<std::int64_t>(total, 1), 0, barWidth);
  return "[" + std::string(static_cast<std::size_t>(filled), '#') +
         std::string(static_cast<std::size_t>(barWidth - filled), ' ') + "] ";
}

}  // namespace

std::string progressLine(const BatchCounts& counts, std::optional<std::int64_t> total,
                         std::chrono::duration<double> elapsed) {
  const std::int64_t done = counts.done();
  std::string line = total ? bar(done, *total) + grouped(done) + " of " + files(*total) : files(done);
  line += ", " + rate(done, elapsed);
  if (total && done > 0) {
    const double left =
        static_cast<double>(std::max<std::int64_t>(*total - done, 0)) / perSecond(done, elapsed);
    line += ", " + duration(left) + " left";
  }
  return line + ", " + grouped(counts.refused) + " refused, " + grouped(counts.failed) + " failed";
}

std::string totalsLine(const BatchCounts& counts, std::chrono::duration<double> elapsed) {
  std::string line = files(counts.done()) + " in " + duration(elapsed.count()) + ", " +
                     rate(counts.done(), elapsed) + ": " + grouped(counts.answered) + " answered, " +
                     grouped(counts.refused) + " refused, " + grouped(counts.failed) + " failed";
  if (counts.skipped > 0) line += ", " + grouped(counts.skipped) + " finished before";
  return line;
}

ProgressDisplay::ProgressDisplay(bool isQuiet) : isShown_(!isQuiet && isatty(STDERR_FILENO) == 1) {}

void ProgressDisplay::update(const BatchCounts& counts, std::optional<std::int64_t> total) {
  const auto now = Clock::now();
  if (!isShown_ || now < next_) return;
  next_ = now + interval;
  static_cast<void>(std::fputs((lineStart + progressLine(counts, total, elapsed())).c_str(), stderr));
}

void ProgressDisplay::clear() {
  if (isShown_) static_cast<void>(std::fputs(lineStart, stderr));
}

}  // namespace zelvo
