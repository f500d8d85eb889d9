#pragma once

#include <string>

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// The path of the worker beside the running executable; a path that does not exist if that is unknown.
std::string workerBesideTool();
/// The same for the cleaner.
std::string cleanerBesideTool();

/// Reads the file at `path` into a request without an operation. A document that is too large is cut; the
/// host then refuses it.
Result<DocumentWorkerRequest> requestAbout(const std::string& path);

/// Sends a request. Returns the response, or its error.
Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request);

/// Sends a request with further members, which a confined child has encoded as an object without its closing
/// brace.
Result<DocumentWorkerResponse> ask(const DocumentWorkerHost& host, const DocumentWorkerRequest& request,
                                   std::string members);

/// The error for a worker, or another confined process named `subject`, that gave no result. If the process
/// could not confine itself, the message explains why.
CommandError errorOf(const WorkerFailure& failure, const std::string& subject = "The worker");

}  // namespace zelvo
