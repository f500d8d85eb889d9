#pragma once

#include <string>
#include <variant>

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// Why a file has no result: what to say, and with which status to end.
struct Complaint {
  ExitStatus status;
  std::string message;
};

/// Reads the file at `path` into a request, whose operation is still to be chosen. A document that is too
/// large is cut: the host refuses it.
std::variant<DocumentWorkerRequest, Complaint> requestAbout(const std::string& path);

/// Sends a request, and gives the response if it is no refusal.
std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host,
                                                    const DocumentWorkerRequest& request);

}  // namespace zelvo
