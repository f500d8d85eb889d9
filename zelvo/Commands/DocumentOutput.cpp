#include "zelvo/Commands/DocumentOutput.hpp"

#include <algorithm>
#include <cerrno>
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

CommandError unwritable(const std::string& path, int error) {
  return {ExitStatus::refused,
          "The file cannot be written: " + path + ": " + std::generic_category().message(error)};
}

}  // namespace

Failure DocumentOutput::check(const OutputArguments& output, const std::vector<std::string>& inputs) {
  const auto& [path, noClobber] = output;
  if (isStandardOutput(path)) {
    if (!Console::isTerminal()) return std::nullopt;
    return CommandError{ExitStatus::usage, "A document is not written to a terminal."};
  }
  if (std::ranges::any_of(inputs,
                          [&path = path](const std::string& input) { return isSameFile(input, path); }))
    return CommandError{ExitStatus::usage, "The output is one of the inputs: " + path};
  std::error_code ignored;
  if (noClobber && std::filesystem::exists(path, ignored)) return unwritable(path, EEXIST);
  return std::nullopt;
}

Failure DocumentOutput::write(const OutputArguments& output, ByteView document,
                              std::string_view description) {
  if (isStandardOutput(output.file)) {
    Console::print(textOf(document));
    return std::nullopt;
  }
  if (Failure failure = writeFile(output, document)) return failure;
  Console::print(printable(output.file) + "\n");
  Console::print(description);
  return std::nullopt;
}

Failure DocumentOutput::writeFile(const OutputArguments& output, ByteView document) {
  const auto existing = output.noClobber ? ExistingFile::kept : ExistingFile::replaced;
  const int error = writeOutputFile(output.file, textOf(document), existing);
  if (error == 0) return std::nullopt;
  return unwritable(output.file, error);
}

ExitStatus DocumentOutput::writeAuthored(const OutputArguments& output, const std::string& format,
                                         const std::function<ByteBuffer()>& author) {
  const auto authored = runConfinedChild([&] { return std::string(author().text()); });
  if (!authored) return Console::report(withHints(authored.error(), Stage::research));
  const ByteView document = bytesOf(*authored);
  const Failure failure = write(output, document, describe(format, document));
  return failure ? Console::report(*failure) : ExitStatus::success;
}

}  // namespace zelvo
