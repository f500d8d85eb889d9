#include "zelvo/Batch/BatchResults.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "System/OutputFile.hpp"
#include "zelvo/Batch/FileOutcome.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

CommandError unusable(const std::string& path, const std::string& why) {
  return {ExitStatus::refused, "The file of results cannot be used: " + path + ": " + why};
}
CommandError unusable(const std::string& path, const std::error_code& error) {
  return unusable(path, error.message());
}
CommandError unusable(const std::string& path, int error) {
  return unusable(path, std::generic_category().message(error));
}

Result<AppendFile> openFile(const std::string& path) {
  std::error_code error;
  AppendFile file = AppendFile::open(path, error);
  if (!error) return file;
  if (error == std::errc::operation_would_block) return unusable(path, "Another batch writes to it.");
  return unusable(path, error);
}

/// The lines of a file, one after the other.
class LineReader {
 public:
  explicit LineReader(const std::string& path) : file_(std::fopen(path.c_str(), "rbe"), &std::fclose) {}
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;
  ~LineReader() { std::free(line_); }

  /// With its line feed, which the last line may lack; valid until the next call. Returns nullopt at the end.
  std::optional<std::string_view> next() {
    const ssize_t length = file_ ? getline(&line_, &capacity_, file_.get()) : -1;
    if (length < 0) return std::nullopt;
    return std::string_view(line_, static_cast<std::size_t>(length));
  }
  /// After the last line: 0, or the error that ended the reading.
  int error() const { return file_ && std::ferror(file_.get()) == 0 ? 0 : EIO; }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
  char* line_ = nullptr;
  std::size_t capacity_ = 0;
};

struct FinishedFile {
  std::string path;
  bool isFinal;
  ExitStatus status;
};

/// Throws `DecodingError` for a line that no batch wrote.
FinishedFile finishedFile(std::string_view line) {
  const auto outcome = fromJson<FileOutcome>(std::string(line));
  if (outcome.status < 0 || outcome.status > static_cast<std::int64_t>(ExitStatus::workerFailed)) {
    throw DecodingError("Unknown status.", "status");
  }
  const bool isFinal = outcome.outcome == FileOutcome::answered || outcome.outcome == FileOutcome::refused;
  return {outcome.fileBytes ? std::string(outcome.fileBytes->text()) : outcome.file, isFinal,
          static_cast<ExitStatus>(outcome.status)};
}

/// Calls `visit` with each whole line and its file. A last line without line feed, or one that a power
/// failure spoiled, is not whole.
Failure eachWholeLine(const std::string& path,
                      const std::function<int(std::string_view, const FinishedFile&)>& visit) {
  LineReader lines(path);
  std::size_t number = 0;
  std::optional<CommandError> spoiled;
  while (const auto line = lines.next()) {
    if (spoiled) return spoiled;
    ++number;
    try {
      if (!line->ends_with('\n')) break;
      const FinishedFile file = finishedFile(*line);
      if (const int error = visit(*line, file); error != 0) return unusable(path, error);
    } catch (const DecodingError&) {
      spoiled = unusable(path, "Line " + std::to_string(number) + " is not one of a batch.");
    }
  }
  if (lines.error() != 0) return unusable(path, lines.error());
  return std::nullopt;
}

}  // namespace

Result<BatchResults> BatchResults::open(const std::string& path, bool resume) {
  if (path.empty() || path == "-") return BatchResults("", AppendFile::standardOutput());
  auto file = openFile(path);
  if (!file) return file.error();
  BatchResults results(path, *std::move(file));
  std::error_code error;
  const std::uint64_t size = results.file_.size(error);
  if (error) return unusable(path, error);
  if (size == 0) return results;
  if (!resume) return unusable(path, "It has content. --resume continues it.");
  if (const Failure failure = results.resume()) return *failure;
  return results;
}

Failure BatchResults::resume() {
  bool mustRewrite = false;
  std::uint64_t wholeBytes = 0;
  const auto collect = [&](std::string_view line, const FinishedFile& file) {
    wholeBytes += line.size();
    if (file.isFinal) {
      final_.push_back(nameDigest(file.path));
      worst_ = std::max(worst_, file.status);
    }
    mustRewrite |= !file.isFinal;
    return 0;
  };
  if (Failure failure = eachWholeLine(path_, collect)) return failure;
  std::ranges::sort(final_);

  std::error_code sizeError;
  mustRewrite |= file_.size(sizeError) != wholeBytes;
  if (sizeError) return unusable(path_, sizeError);
  if (!mustRewrite) return std::nullopt;
  Failure unreadable;
  const int error = writeOutputFile(path_, [&](const WriteBytes& write) {
    const auto keep = [&](std::string_view line, const FinishedFile& file) {
      return file.isFinal ? write(line) : 0;
    };
    unreadable = eachWholeLine(path_, keep);
    return unreadable ? EIO : 0;
  });
  if (unreadable) return unreadable;
  if (error != 0) return unusable(path_, error);
  auto rewritten = openFile(path_);  // the name is that of another file now
  if (!rewritten) return rewritten.error();
  file_ = *std::move(rewritten);
  return std::nullopt;
}

bool BatchResults::isFinal(std::string_view path) const {
  return !final_.empty() && std::ranges::binary_search(final_, nameDigest(path));
}

Failure BatchResults::append(const std::string& line) const {
  const std::error_code error = file_.append((file_.isTerminal() ? jsonForTerminal(line) : line) + "\n");
  if (!error) return std::nullopt;
  if (path_.empty()) return CommandError{ExitStatus::refused, "Standard output cannot be written."};
  return CommandError{ExitStatus::refused, "The file cannot be written: " + path_ + ": " + error.message()};
}

}  // namespace zelvo
