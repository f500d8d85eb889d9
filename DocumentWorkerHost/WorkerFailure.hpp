#pragma once

#include <optional>
#include <string>

namespace zelvo {

struct ChildResult;

/// Why there is no response: every way in which a worker can fail its host. A document that the worker
/// refuses is none of them; the refusal is a response.
struct WorkerFailure {
  enum class Kind {
    requestTooLarge,      ///< found before anything was started
    notFound,             ///< no executable at the path
    notRun,               ///< the system refused to start it, or failed under way; `code` is the error number
    timedOut,             ///< ended by the host
    responseTooLarge,     ///< ended by the host
    gaveNoResponse,       ///< status 65
    notConfined,          ///< status 78, before it read a byte
    unknownStatus,        ///< any other status; `code` is the status
    cpuTimeUsedUp,        ///< killed by the system at its limit of processor time
    killedBeforeReading,  ///< SIGSYS, before it read a byte: most likely by a filter that it inherited
    brokenInvariant,  ///< SIGSYS, after that: its own filter killed it at a system call that it never makes
    killed,           ///< SIGKILL from outside, most often for memory
    crashed,          ///< any other signal; `code` is the signal
    unreadableResponse,  ///< no JSON, not the response's shape, or no response to this request
  };

  Kind kind;
  int code = 0;
  /// What more is known: the path, what the program wrote on standard error, what is wrong with the JSON. It
  /// may come from a hostile process: show it to people only with its control characters replaced.
  std::string detail = {};

  /// What the end of a worker's process says; none when its output is worth decoding.
  static std::optional<WorkerFailure> of(const ChildResult& result, const std::string& workerPath);

  /// A sentence for people about the process, which it calls `subject`; UTF-8 if the detail is.
  std::string message(const std::string& subject = "The worker") const;
};

}  // namespace zelvo
