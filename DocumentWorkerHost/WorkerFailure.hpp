#pragma once

#include <optional>
#include <string>

namespace zelvo {

struct ChildResult;

/// Why there is no response: every way in which a worker can fail. A refused document is not a failure:
/// the refusal is a response.
struct WorkerFailure {
  enum class Kind {
    requestTooLarge,      ///< nothing was started
    notFound,             ///< no executable at the path
    notRun,               ///< it could not be started, or a system call failed; `code` is the error number
    timedOut,             ///< ended by the host
    responseTooLarge,     ///< ended by the host
    gaveNoResponse,       ///< status 65
    notConfined,          ///< status 78, before it read a byte
    unknownStatus,        ///< any other status; `code` is the status
    cpuTimeUsedUp,        ///< killed by the system at its limit of processor time
    killedBeforeReading,  ///< SIGSYS, before it read a byte: most likely by a filter that it inherited
    brokenInvariant,      ///< SIGSYS, after that: killed by its own filter at a forbidden system call
    killed,               ///< SIGKILL from outside, most often for memory
    crashed,              ///< any other signal; `code` is the signal
    unreadableResponse,   ///< not JSON, not the response's schema, or not a response to this request
  };

  Kind kind;
  int code = 0;
  /// The path, the program's standard error, or the error in the JSON. It may come from a hostile process:
  /// escape its control characters before showing it.
  std::string detail = {};

  /// The failure of a worker's process; nullopt if it answered, so that its output can be decoded.
  static std::optional<WorkerFailure> of(const ChildResult& result, const std::string& workerPath);

  /// A human-readable sentence about the process, named `subject`. UTF-8 if the detail is.
  std::string message(const std::string& subject = "The worker") const;
};

}  // namespace zelvo
