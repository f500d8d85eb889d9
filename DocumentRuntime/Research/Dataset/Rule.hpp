#pragma once

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::ResearchRule {

/// Throws `DocumentError` validationFailed with the message unless the rule holds.
inline void require(bool holds, const char* message) {
  if (!holds) throw DocumentError::validationFailed(message);
}

}  // namespace zelvo::ResearchRule
