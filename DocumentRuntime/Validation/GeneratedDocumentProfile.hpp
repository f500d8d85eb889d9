#pragma once

#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

/// The allow-list of elements and namespaces of generated documents. Any other element was not written by
/// this system, and could run, load or show unapproved content.
namespace zelvo::GeneratedDocumentProfile {

inline constexpr std::string_view version = "zelvo-ooxml-profile-1";

/// Checks one element and everything below it. Throws `DocumentError` validationFailed "unexpected executable
/// or unsupported document element", "unexpected document namespace" or "unexpected default namespace".
void check(XMLNode element);

}  // namespace zelvo::GeneratedDocumentProfile
