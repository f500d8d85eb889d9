#pragma once

#include <optional>
#include <string>

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

namespace zelvo {

/// Does what the request asks for. Throws `DocumentError`: what the request lacks, before any work, or what
/// went wrong in the work. Takes the request apart, so that its document is freed as soon as it has been
/// read.
DocumentWorkerResponse run(DocumentWorkerRequest&& request);

/// The text of the response to the text of a request. An operation that fails is answered too: with the error
/// alone. Throws `DecodingError`. A `RequestHandler`.
std::optional<std::string> answerDocumentRequest(std::string request);

}  // namespace zelvo
