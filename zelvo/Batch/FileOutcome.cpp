#include "zelvo/Batch/FileOutcome.hpp"

#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {

FileOutcome::FileOutcome(const std::string& path) : file(wellFormed(path)), outcome(answered) {
  if (file != path) fileBytes = ByteBuffer::copyOf(path);
}

void FileOutcome::setError(const CommandError& error) {
  outcome = error.status == ExitStatus::workerFailed ? failed : refused;
  status = static_cast<std::int64_t>(error.status);
  message = wellFormed(error.message);
  for (const std::string& line : error.hints)
    hint = (hint ? *hint + " " : "") + wellFormed(line);
}

}  // namespace zelvo
