#pragma once

#include <optional>
#include <string>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

namespace zelvo {

/// Runs the operation that the request asks for. Throws `DocumentError`: before any work if the request lacks
/// a field, or if the operation fails. Takes the request's fields, so that its document is freed as soon as
/// it has been read.
DocumentWorkerResponse run(DocumentWorkerRequest&& request);

/// The worker's `RequestHandler`. A `DocumentError` of the operation becomes a response with the error alone.
/// Throws `DecodingError`, and `ResponseTooLarge` if the response cannot fit a message.
std::optional<std::string> answerDocumentRequest(std::string request);

}  // namespace zelvo
