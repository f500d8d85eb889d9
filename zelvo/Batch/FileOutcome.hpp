#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "DocumentRuntime/Coding/CleaningCoding.hpp"
#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Output/Result.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {

/// One line of a batch's results, as JSON: the outcome of one file.
struct FileOutcome {
  std::string file;                     ///< the path, with U+FFFD for what is not UTF-8
  std::optional<ByteBuffer> fileBytes;  ///< the path, if it is not UTF-8
  std::string outcome;                  ///< one of the names below
  std::int64_t status = 0;              ///< the exit status of the command for this file alone
  std::optional<WorkbookInspection> inspection;
  std::optional<CleaningReport> report;
  std::optional<std::string> message;  ///< of a file without a result
  std::optional<std::string> hint;

  static constexpr const char* answered = "answered";
  static constexpr const char* refused = "refused";  ///< the file cannot be read, or the document was refused
  static constexpr const char* failed = "failed";    ///< nothing is known of the document: worth another try

  FileOutcome() = default;
  explicit FileOutcome(const std::string& path) : file(wellFormed(path)), outcome(answered) {
    if (file != path) fileBytes = ByteBuffer::copyOf(path);
  }

  void setError(const CommandError& error) {
    outcome = error.status == ExitStatus::workerFailed ? failed : refused;
    status = static_cast<std::int64_t>(error.status);
    message = wellFormed(error.message);
    for (const std::string& line : error.hints)
      hint = (hint ? *hint + " " : "") + wellFormed(line);
  }
};

template <ConstOrNot<FileOutcome> Record>
void eachField(Record& line, const auto& field) {
  field("file", line.file);
  field("fileBytes", line.fileBytes);
  field("outcome", line.outcome);
  field("status", line.status);
  field("inspection", line.inspection);
  field("report", line.report);
  field("message", line.message);
  field("hint", line.hint);
}

}  // namespace zelvo
