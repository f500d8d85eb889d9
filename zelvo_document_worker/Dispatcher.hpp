#pragma once

#include "DocumentWorkerProtocol/DocumentWorkerMessage.hpp"

namespace zelvo {

/// Does what the request asks for. Throws `DocumentError`: what the request lacks, before any work, or what
/// went wrong in the work. Takes the request apart, so that its document is freed as soon as it has been
/// read.
DocumentWorkerResponse run(DocumentWorkerRequest&& request);

}  // namespace zelvo
