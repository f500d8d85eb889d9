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

/// Reads the file at `path` into the request, sends it, and gives the response if it is no refusal.
std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host, const std::string& path,
                                                    DocumentWorkerRequest request);

}  // namespace zelvo
