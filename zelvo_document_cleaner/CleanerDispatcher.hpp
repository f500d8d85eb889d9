#pragma once

#include <optional>
#include <string>

namespace zelvo {

/// The cleaner's `RequestHandler`. A refused workbook becomes a response with the error alone. Returns
/// nullopt if the result differs from its source: a defect of the cleaner must not be reported as an error of
/// the document. Throws `DecodingError`.
std::optional<std::string> answerCleaningRequest(std::string request);

}  // namespace zelvo
