#include "zelvo/Execution/InputFile.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const {
    if (file != stdin) static_cast<void>(std::fclose(file));
  }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

constexpr std::string_view standardInput = "-";

CommandError unreadable(const std::string& path, int error) {
  return {ExitStatus::refused,
          "The file cannot be read: " + path + ": " + std::generic_category().message(error)};
}

std::string nameOf(const std::string& path) {
  if (path == standardInput) return "standard input";
  return wellFormed(path.substr(path.find_last_of('/') + 1));
}

/// At most `bound` bytes; nullopt if reading fails.
std::optional<std::string> contentOf(std::FILE* file, std::size_t bound) {
  std::string content;
  std::array<char, 65536> chunk;
  while (content.size() < bound) {
    const std::size_t wanted = std::min(chunk.size(), bound - content.size());
    const std::size_t count = std::fread(chunk.data(), 1, wanted, file);
    content.append(chunk.data(), count);
    if (count < wanted) break;
  }
  if (std::ferror(file) != 0) return std::nullopt;
  return content;
}

}  // namespace

Result<InputFile> readFile(const std::string& path, std::size_t bound) {
  const File file(path == standardInput ? stdin : std::fopen(path.c_str(), "rbe"));
  if (!file) return unreadable(path, errno);
  const std::optional<std::string> content = contentOf(file.get(), bound);
  if (!content) return unreadable(path, errno);
  return InputFile{nameOf(path), ByteBuffer::copyOf(*content)};
}

Result<ByteBuffer> readWholeFile(const std::string& path, std::size_t mebibytes) {
  const std::size_t limit = mebibytes << 20U;
  Result<InputFile> file = readFile(path, limit + 1);
  if (!file) return file.error();
  if (file->data.size() > limit) {
    return CommandError{ExitStatus::refused,
                        "The file is larger than " + std::to_string(mebibytes) + " MiB: " + path};
  }
  return std::move(file->data);
}

}  // namespace zelvo
