#pragma once

#include <string_view>

namespace zelvo::OOXML {

/// Whether the text, in upper case, holds "<!DOCTYPE" or "<!ENTITY" anywhere: in a comment or a CDATA section
/// too. `text` must be valid UTF-8.
bool holdsDeclaration(std::string_view text);

}  // namespace zelvo::OOXML
