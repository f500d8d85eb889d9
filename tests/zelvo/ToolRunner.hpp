#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <termios.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Support/Cases.hpp"
#include "Support/FakeWorker.hpp"
#include "Support/TemporaryFolder.hpp"
#include "Support/Texts.hpp"
#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"
#include "Text/ASCII.hpp"
#include "Text/Digest.hpp"

namespace zelvo::testing {

const std::string book = EXAMPLE_WORKBOOK;

struct ToolRun {
  int status;
  std::string output;
  std::string errors;
  std::string hints = {};  ///< of the errors, one a line; HintsTest compares them

  bool operator==(const ToolRun& other) const {
    return status == other.status && output == other.output && errors == other.errors;
  }
};

inline std::ostream& operator<<(std::ostream& stream, const ToolRun& run) {
  return stream << "status " << run.status << "\n--- output\n"
                << run.output << "\n--- errors\n"
                << run.errors << "\n--- hints\n"
                << run.hints;
}

/// A run that prints one error and nothing else.
inline ToolRun failure(int status, const std::string& message) {
  return {status, "", "zelvo: " + message + "\n"};
}

inline ToolRun run(const std::string& program, const std::vector<std::string>& arguments,
                   std::string_view input = {}) {
  const ChildResult result = runChildProcess({.program = program, .arguments = arguments}, input,
                                             {.outputBytes = 1 << 20, .wallClock = std::chrono::seconds(60)});
  EXPECT_EQ(result.outcome, ChildOutcome::exited) << "code " << result.code;
  ToolRun answer = {result.code, result.output, ""};
  const std::string_view prefix = "zelvo: hint: ";
  for (std::size_t at = 0, end = 0; at < result.errorOutput.size(); at = end) {
    end = std::min(result.errorOutput.find('\n', at), result.errorOutput.size() - 1) + 1;
    const std::string line = result.errorOutput.substr(at, end - at);
    const bool isHint = line.starts_with(prefix);
    (isHint ? answer.hints : answer.errors) += isHint ? line.substr(prefix.size()) : line;
  }
  return answer;
}

/// Runs the tool, with arguments as a shell takes them, after a shell command.
inline ToolRun runAfter(const std::string& command, const std::string& arguments, std::string_view input = {},
                        const std::string& tool = TOOL) {
  return run("/bin/sh", {"-c", command + "; exec \"$0\" " + arguments, tool}, input);
}

/// The same with a terminal as standard output. It must hold all of the output.
inline ToolRun onTerminal(const std::string& arguments, std::string_view input = {},
                          const std::string& tool = TOOL) {
  const Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY));
  EXPECT_EQ(grantpt(terminal.number()) | unlockpt(terminal.number()), 0);
  termios raw = {};  // no byte is converted
  EXPECT_EQ(tcsetattr(terminal.number(), TCSANOW, &raw), 0);
  ToolRun result = runAfter(":", arguments + " >" + ptsname(terminal.number()), input, tool);
  std::array<char, 4096> received;
  ssize_t count = 0;
  while ((count = read(terminal.number(), received.data(), received.size())) > 0)
    result.output.append(received.data(), static_cast<std::size_t>(count));
  return result;
}

/// The tool in a folder of its own, with a fake worker or none. In commands, messages and tables "@" is the
/// folder and "$book" the example workbook.
class ToolTest : public ::testing::Test {
 protected:
  TemporaryFolder folder;

  std::string expanded(std::string text) const {
    for (const auto& [name, value] : {std::pair("@", folder.path("")), std::pair("$book", book)})
      for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size())
        text.replace(at, std::string_view(name).size(), value);
    return text;
  }
  ToolRun zelvo(const std::string& arguments, std::string_view input = {}) const {
    return run(TOOL, words(expanded(arguments)), input);
  }

  void displace() const { std::filesystem::create_hard_link(TOOL, folder.path("zelvo")); }
  void displace(std::string_view act) const {
    displace();
    placeFakeWorker(folder, act);
  }
  ToolRun displaced(const std::string& arguments, std::string_view input = {}) const {
    return run(folder.path("zelvo"), words(expanded(arguments)), input);
  }

  /// Each case: arguments => status | message. No file of the folder may be added, changed or removed.
  void expectFailures(std::string_view table, std::string_view input = {}) const {
    const std::string before = content();
    for (const auto& [arguments, status, message] : cases<3>(table))
      EXPECT_EQ(zelvo(arguments, input), failure(std::stoi(status), expanded(message))) << arguments;
    EXPECT_EQ(content(), before);
  }

  /// The command writes the same document to a file as to standard output, and describes it. Returns it.
  std::string expectDelivers(const std::string& command, const std::string& name, std::string_view input = {},
                             const std::string& facts = "", const std::string& notes = "") const {
    const ToolRun written = zelvo(command + " -o @" + name, input);
    std::string document = contentOf(folder.path(name));
    const char kind = ASCII::lowercased(name).at(name.size() - 4);
    EXPECT_EQ(written.output, expanded("@" + name) + "\n  Format   " +
                                  (kind == 'd'   ? "Word document"
                                   : kind == 'p' ? "PowerPoint presentation"
                                                 : "Excel workbook") +
                                  "\n  Size     " + std::to_string(document.size()) + " bytes\n" + facts +
                                  "  SHA-256  " + Digest::sha256(bytesOf(document)) + "\n" + notes);
    EXPECT_EQ(zelvo(command + " -o -", input), (ToolRun{0, document, ""}));
    return document;
  }

 private:
  std::string content() const {
    std::string all;
    for (const auto& file : std::set(std::filesystem::directory_iterator(folder.path("")), {}))
      all += file.path().string() + (file.is_regular_file() ? contentOf(file.path()) : "folder") + "\n";
    return all;
  }
};

}  // namespace zelvo::testing
