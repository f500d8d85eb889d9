#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelvo::testing {

/// What the XML reader and libxml2 say differently of a part, or none where they agree on acceptance and
/// content, or where a difference is known and right:
/// - what the reader refuses before it parses, or for its limits, libxml2 may accept;
/// - names with letters outside ASCII: our parser follows the fourth edition of XML 1.0, libxml2 the fifth,
/// which lets more in;
/// - XML declarations: libxml2 refuses versions that it does not know and warns of others, ours takes any
/// that is well-formed.
std::optional<std::string> disagreement(std::string_view xml);

}  // namespace zelvo::testing
