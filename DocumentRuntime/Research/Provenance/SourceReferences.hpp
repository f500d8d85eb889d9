#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// References of research results to their evidence: identifiers and URLs.
namespace zelvo::SourceReferences {

/// The limit of identifiers, and likewise of URLs, of one row.
inline constexpr std::size_t maximumPerRow = 8;

/// Not empty, at most 160 bytes, and only ASCII letters, digits, "-", "." and "_".
bool isIdentifier(std::string_view text);

/// Whether all are identifiers and no two are the same.
bool areDistinctIdentifiers(std::vector<std::string_view> texts);

/// An absolute URL of scheme "http" or "https", in lower case, with a host and neither user nor password.
bool isWebURL(std::string_view text);

/// Every text once, ascending by the scalars of their canonically composed forms.
std::vector<std::string> distinctSorted(std::vector<std::string> texts);

}  // namespace zelvo::SourceReferences
