#pragma once

#include <optional>
#include <string>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

namespace zelvo {

/// Runs the operation of the request. Throws `DocumentError` before any work if the request lacks a field,
/// and if the operation fails. Moves from the request, so that its document is freed as soon as it has been
/// read.
DocumentWorkerResponse run(DocumentWorkerRequest&& request);

/// The worker's `RequestHandler`. A `DocumentError` of the operation becomes a response with the error alone.
/// Throws `DecodingError`, and `ResponseTooLarge` if the response cannot fit a message.
std::optional<std::string> answerDocumentRequest(std::string request);

}  // namespace zelvo
