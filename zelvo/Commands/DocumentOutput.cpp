#include "zelvo/Commands/DocumentOutput.hpp"

#include <system_error>

#include "System/OutputFile.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

bool isStandardOutput(const std::string& path) {
  return path == "-";
}

}  // namespace

Failure DocumentOutput::check(const std::string& path) {
  if (!isStandardOutput(path) || !Console::isTerminal()) return std::nullopt;
  return CommandError{ExitStatus::usage, "A document is not written to a terminal."};
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
  if (!authored) return Console::report(authored.error());
  const ByteView document = bytesOf(*authored);
  const Failure failure = write(path, document, describe(format, document));
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
