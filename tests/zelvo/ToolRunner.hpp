#pragma once

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "Support/Cases.hpp"
#include "Support/FakeWorker.hpp"
#include "Support/TemporaryFolder.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"

namespace zelvo::testing {

/// What a run of the tool did.
struct ToolRun {
  int status;
  std::string output;
  std::string errors;

  bool operator==(const ToolRun&) const = default;
};

/// A run that says nothing but why it failed.
inline ToolRun failure(int status, const std::string& message) {
  return {status, "", "zelvo: " + message + "\n"};
}

inline std::ostream& operator<<(std::ostream& stream, const ToolRun& run) {
  return stream << "status " << run.status << "\n--- output\n"
                << run.output << "\n--- errors\n"
                << run.errors;
}

inline ToolRun run(const std::string& program, const std::vector<std::string>& arguments,
                   std::string_view input = {}) {
  constexpr std::size_t outputBytes = 1 << 20;
  const ChildResult result =
      runChildProcess({.program = program, .arguments = arguments}, input,
                      {.outputBytes = outputBytes, .wallClock = std::chrono::seconds(60)});
  EXPECT_EQ(result.outcome, ChildOutcome::exited) << "code " << result.code;
  return {result.code, result.output, result.errorOutput};
}

/// Runs the tool beside the real worker.
inline ToolRun zelvo(const std::vector<std::string>& arguments, std::string_view input = {}) {
  return run(TOOL, arguments, input);
}

/// Runs the tool, its arguments as a shell takes them, with a terminal as standard output, which receives
/// less than a terminal holds.
inline ToolRun onTerminal(const std::string& arguments, std::string_view input = {},
                          const std::string& tool = TOOL) {
  const Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY));
  EXPECT_EQ(grantpt(terminal.number()) | unlockpt(terminal.number()), 0);
  termios raw = {};  // the bytes stay as they are
  EXPECT_EQ(tcsetattr(terminal.number(), TCSANOW, &raw), 0);
  ToolRun result =
      run("/bin/sh", {"-c", "\"$0\" " + arguments + " >" + ptsname(terminal.number()), tool}, input);
  std::array<char, 4096> received;
  ssize_t count = 0;
  while ((count = read(terminal.number(), received.data(), received.size())) > 0)
    result.output.append(received.data(), static_cast<std::size_t>(count));
  return result;
}

/// The tool in a folder of its own, where a test puts the worker of its choice, or none.
class DisplacedTool {
 public:
  DisplacedTool() { std::filesystem::create_hard_link(TOOL, path_); }
  explicit DisplacedTool(std::string_view act) : DisplacedTool() { placeFakeWorker(folder_, act); }

  const TemporaryFolder& folder() const { return folder_; }
  ToolRun run(const std::vector<std::string>& arguments, std::string_view input = {}) const {
    return testing::run(path_, arguments, input);
  }

 private:
  TemporaryFolder folder_;
  std::string path_ = folder_.path("zelvo");
};

}  // namespace zelvo::testing
