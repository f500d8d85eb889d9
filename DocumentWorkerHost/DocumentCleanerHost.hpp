#pragma once

#include <chrono>
#include <string>
#include <variant>

#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "DocumentWorkerProtocol/DocumentCleanerMessage.hpp"

namespace zelvo {

/// The result of a request: the cleaner's response, which may be a refusal (`error`), or why there is none.
using CleanerReply = std::variant<DocumentCleanerResponse, WorkerFailure>;

/// Sends requests to confined cleaners, one process per request.
///
///     const DocumentCleanerHost host("/usr/libexec/zelvo/zelvo_document_cleaner");
///     const CleanerReply reply = host.send({.sourceName = "sales.xlsx", .data = std::move(bytes)});
///
/// A host may be used by several threads at once; it keeps nothing between requests.
class DocumentCleanerHost {
 public:
  /// The cleaner may use 45 seconds of processor time; on a busy machine that takes longer.
  static constexpr std::chrono::seconds defaultTimeout{180};

  /// `cleanerPath` is the cleaner's executable; it is not searched for. `timeout` is wall-clock time per
  /// request.
  explicit DocumentCleanerHost(std::string cleanerPath, std::chrono::milliseconds timeout = defaultTimeout);

  /// Sends a request, whose texts are valid UTF-8, and waits for the reply. A response holds version,
  /// document and report, or `error` alone; its texts come from the document and are as trustworthy as that.
  /// Throws only `std::bad_alloc`.
  CleanerReply send(const DocumentCleanerRequest& request) const;

 private:
  std::string cleanerPath_;
  std::chrono::milliseconds timeout_;
};

}  // namespace zelvo
