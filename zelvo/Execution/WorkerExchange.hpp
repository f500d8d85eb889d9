#pragma once

#include <string>
#include <variant>

#include "DocumentWorkerHost/DocumentWorkerHost.hpp"
#include "zelvo/Complaint.hpp"

namespace zelvo {

/// Reads the file at `path` into a request, whose operation is still to be chosen. A document that is too
/// large is cut: the host refuses it.
std::variant<DocumentWorkerRequest, Complaint> requestAbout(const std::string& path);

/// Sends a request, and gives the response if it is no refusal.
std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host,
                                                    const DocumentWorkerRequest& request);

/// The same with further members, which a confined child has encoded: an object without its closing brace.
std::variant<DocumentWorkerResponse, Complaint> ask(const DocumentWorkerHost& host,
                                                    const DocumentWorkerRequest& request,
                                                    std::string members);

}  // namespace zelvo
