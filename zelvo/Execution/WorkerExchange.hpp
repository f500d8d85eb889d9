#pragma once

#include <string>

#include "DocumentWorkerHost/DocumentCleanerHost.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// The executables that commands start.
struct Hosts {
  DocumentWorkerHost worker;
  DocumentCleanerHost cleaner;
};

/// The executables beside the running one; paths that do not exist if its own is unknown.
Hosts hostsBesideTool();

/// Reads the file at `path` into a request without an operation. A document that is too large is cut; the
/// host then refuses it.
Result<DocumentWorkerRequest> requestAbout(const std::string& path);

/// Sends a request. Returns the response, or its error.
Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request);

/// Sends a request with further members, which a confined child has encoded as an object without its closing
/// brace.
Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request,
                                   std::string members);

/// Sends a request to the cleaner. Returns the response, or its error.
Result<DocumentCleanerResponse> ask(const DocumentCleanerHost& host, const DocumentCleanerRequest& request);

/// The error for a worker, or another confined process named `subject`, that gave no result. If the process
/// could not confine itself, the message explains why.
CommandError errorOf(const WorkerFailure& failure, const std::string& subject = "The worker");

}  // namespace zelvo
