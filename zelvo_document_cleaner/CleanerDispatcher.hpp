#pragma once

#include <optional>
#include <string>

namespace zelvo {

/// The text of the cleaner's response to the text of a request. A workbook that is refused is answered with
/// the error alone. None if the result differs from its source: a defect of the cleaner must not pass for a
/// word on the document. Throws `DecodingError`. A `RequestHandler`.
std::optional<std::string> answerCleaningRequest(std::string request);

}  // namespace zelvo
