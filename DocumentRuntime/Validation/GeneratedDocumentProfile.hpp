#pragma once

#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"

/// The vocabulary that generated documents are written in. Whatever is outside it was not written by this
/// system, and might run, load or show something that nobody approved.
namespace zelvo::GeneratedDocumentProfile {

inline constexpr std::string_view version = "zelvo-ooxml-profile-1";

/// Checks one element and everything below it. Throws `DocumentError` validationFailed "unexpected executable
/// or unsupported document element", "unexpected document namespace" or "unexpected default namespace".
void check(XMLNode element);

}  // namespace zelvo::GeneratedDocumentProfile
