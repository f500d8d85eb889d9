#include "zelvo/Commands/DocumentOutput.hpp"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "System/OutputFile.hpp"
#include "zelvo/Commands/RefusalHints.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

bool isStandardOutput(const std::string& path) {
  return path == "-";
}

/// Compares device and inode. False if one of them does not exist.
bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code ignored;
  return std::filesystem::equivalent(a, b, ignored);
}

}  // namespace

Failure DocumentOutput::check(const std::string& path, const std::vector<std::string>& inputs) {
  if (isStandardOutput(path)) {
    if (!Console::isTerminal()) return std::nullopt;
    return CommandError{ExitStatus::usage, "A document is not written to a terminal."};
  }
  if (std::ranges::none_of(inputs, [&](const std::string& input) { return isSameFile(input, path); }))
    return std::nullopt;
  return CommandError{ExitStatus::usage, "The output is one of the inputs: " + path};
}

Failure DocumentOutput::write(const std::string& path, ByteView document, std::string_view description) {
  if (isStandardOutput(path)) {
    Console::print(textOf(document));
    return std::nullopt;
  }
  if (Failure failure = writeFile(path, document)) return failure;
  Console::print(printable(path) + "\n");
  Console::print(description);
  return std::nullopt;
}

Failure DocumentOutput::writeFile(const std::string& path, ByteView document) {
  const int error = writeOutputFile(path, textOf(document));
  if (error == 0) return std::nullopt;
  return CommandError{ExitStatus::refused,
                      "The file cannot be written: " + path + ": " + std::generic_category().message(error)};
}

ExitStatus DocumentOutput::writeAuthored(const std::string& path, const std::string& format,
                                         const std::function<ByteBuffer()>& author) {
  const auto authored = runConfinedChild([&] { return std::string(author().text()); });
  if (!authored) return Console::report(withHints(authored.error(), Stage::research));
  const ByteView document = bytesOf(*authored);
  const Failure failure = write(path, document, describe(format, document));
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
