#include "zelvo/DocumentOutput.hpp"

#include <system_error>
#include <variant>

#include "System/OutputFile.hpp"
#include "zelvo/ConfinedWork.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/DocumentText.hpp"
#include "zelvo/TerminalText.hpp"

namespace zelvo {

bool DocumentOutput::isStandardOutput(const std::string& path) {
  return path == "-";
}

std::optional<Complaint> DocumentOutput::check(const std::string& path) {
  if (!isStandardOutput(path) || !Console::isTerminal()) return std::nullopt;
  return Complaint{ExitStatus::usage, "A document is not written to a terminal."};
}

std::optional<Complaint> DocumentOutput::deliver(const std::string& path, ByteView document,
                                                 std::string_view description) {
  if (isStandardOutput(path)) {
    Console::print(textOf(document));
    return std::nullopt;
  }
  if (const int error = writeOutputFile(path, textOf(document)); error != 0) {
    return Complaint{ExitStatus::refused,
                     "The file cannot be written: " + path + ": " + std::generic_category().message(error)};
  }
  Console::print(printable(path) + "\n");
  Console::print(description);
  return std::nullopt;
}

ExitStatus DocumentOutput::deliverAuthored(const std::string& path, const std::string& format,
                                           const std::function<ByteBuffer()>& author) {
  const auto authored = runConfined([&] { return std::string(author().text()); });
  if (const auto* complaint = std::get_if<Complaint>(&authored)) return complain(*complaint);
  const ByteView document = bytesOf(*std::get_if<std::string>(&authored));
  const auto complaint = deliver(path, document, describe(format, document));
  return complaint ? complain(*complaint) : ExitStatus::success;
}

}  // namespace zelvo
