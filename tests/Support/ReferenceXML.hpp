#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelvo::testing {

/// What the XML reader and libxml2 say differently of a part, or none where they agree on acceptance and
/// content, or where a difference is known and right:
/// - what the reader refuses before it parses, or for its limits, libxml2 may accept;
/// - XML declarations: libxml2 warns of some versions and encodings that are not well-formed names of any,
/// and refuses versions that
///   it does not know; ours takes 1.x and any name that is well-formed.
std::optional<std::string> disagreement(std::string_view xml);

}  // namespace zelvo::testing
