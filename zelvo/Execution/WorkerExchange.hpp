#pragma once

#include <string>

#include "DocumentWorkerHost/DocumentCleanerHost.hpp"
#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace zelvo {

/// The executables that commands start.
struct Hosts {
  DocumentWorkerHost worker;
  DocumentCleanerHost cleaner;
  std::string folder;  ///< where they are
};

/// The executables in the folder that is given, else in $ZELVO_LIBEXEC, beside the tool, or in
/// ../libexec/zelvo. They need not exist.
Hosts findHosts(const HostArguments& arguments);

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

/// The same without the explanation, which a child process finds: its parent may have only one thread.
CommandError errorWithoutExplanation(const WorkerFailure& failure, const std::string& subject = "The worker");

}  // namespace zelvo
