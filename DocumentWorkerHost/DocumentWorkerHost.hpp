#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <variant>

#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

namespace zelvo {

/// The result of a request: the worker's response, which may be a refusal (`error`), or why there is none.
using WorkerReply = std::variant<DocumentWorkerResponse, WorkerFailure>;

/// Sends requests to confined workers, one process per request.
///
///     const DocumentWorkerHost host("/usr/libexec/zelvo/zelvo_document_worker");
///     const WorkerReply reply = host.send({.operation = DocumentWorkerRequest::Operation::inspect,
///                                          .data = std::move(bytes),
///                                          .sourceName = "sales.xlsx"});
///
/// A host may be used by several threads at once; it keeps nothing between requests.
class DocumentWorkerHost {
 public:
  /// The worker may use 45 seconds of processor time; on a busy machine that takes longer.
  static constexpr std::chrono::seconds defaultTimeout{180};

  /// No document of this size fits into a request: its base64 alone has the size of a message. A caller that
  /// reads a document can stop here.
  static constexpr std::size_t unsendableBytes = DocumentWorkerWire::maximumMessageBytes / 4 * 3;

  /// `workerPath` is the worker's executable; it is not searched for. `timeout` is wall-clock time per
  /// request.
  explicit DocumentWorkerHost(std::string workerPath, std::chrono::milliseconds timeout = defaultTimeout);

  /// Sends a request, whose texts are valid UTF-8, and waits for the reply. A response holds exactly what its
  /// operation promises, or `error` alone; its texts come from the document and are as trustworthy as that.
  /// Throws only `std::bad_alloc`.
  WorkerReply send(const DocumentWorkerRequest& request) const;

  /// The same for an encoded request for `operation`.
  WorkerReply sendEncoded(std::string_view request, DocumentWorkerRequest::Operation operation) const;

 private:
  std::string workerPath_;
  std::chrono::milliseconds timeout_;
};

}  // namespace zelvo
