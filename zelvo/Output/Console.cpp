#include "zelvo/Output/Console.hpp"

#include <cstdio>
#include <string>
#include <unistd.h>

#include "System/StandardStreams.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo::Console {
namespace {

void write(std::FILE* stream, std::string_view text) {
  // A failure sets the stream's error indicator, which `finish` checks.
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stream));
}

}  // namespace

void print(std::string_view text) {
  write(stdout, text);
}

void printJson(std::string_view json) {
  print(isTerminal() ? jsonForTerminal(json) : json);
}

void printError(std::string_view message) {
  static_cast<void>(std::fflush(stdout));
  write(stderr, "zelvo: " + printable(message) + "\n");
}

ExitStatus report(const CommandError& error) {
  printError(error.message);
  for (const std::string& hint : error.hints)
    printNote("zelvo: hint: " + hint);
  return error.status;
}

void printNote(std::string_view text) {
  static_cast<void>(std::fflush(stdout));
  write(stderr, printable(text) + "\n");
}

bool isTerminal() {
  return isatty(STDOUT_FILENO) == 1;
}

std::size_t terminalWidth() {
  return outputTerminalWidth();
}

bool finish() {
  const bool isFlushed = std::fflush(stdout) == 0;
  return isFlushed && std::ferror(stdout) == 0;
}

}  // namespace zelvo::Console
