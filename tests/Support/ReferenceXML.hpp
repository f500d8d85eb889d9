#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelvo::testing {

/// What the XML reader and libxml2 say differently of a part, or none where they agree on acceptance and
/// content, or where a difference is known and right: what the reader refuses before it parses, or for its
/// limits, libxml2 may accept; and of declarations libxml2 takes other versions and encodings.
std::optional<std::string> disagreement(std::string_view xml);

}  // namespace zelvo::testing
