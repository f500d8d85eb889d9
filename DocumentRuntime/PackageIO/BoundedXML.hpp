#pragma once

#include <cstddef>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* xmlEncoding = "XML encoding or size";
inline constexpr const char* xmlDeclaration = "XML DTD or entity declaration";

}  // namespace zelvo::RefusalDetail

/// XML parts of packages, parsed under limits: no document type, no entity declaration, bounded in size,
/// elements, depth and attributes. Namespaces are not processed: a prefix is part of the name.
namespace zelvo::OOXML {

inline constexpr std::size_t maximumXMLBytes = 16'777'216;

/// Parses one part. Throws `DocumentError`, in this order of checks: unsupported "XML encoding or size";
/// unsafeContent "XML DTD or entity declaration"; and while parsing resourceLimit "XML structure" or
/// invalidArchive "malformed XML", also for a second root and an undeclared entity. Without declarations no
/// external entity can exist. The tree shares the part's bytes, which must not be changed afterwards.
XMLTree xml(const ByteBuffer& part);

/// Whether the text, in upper case, holds "<!DOCTYPE" or "<!ENTITY" anywhere, also in a comment or a CDATA
/// section. `text` must be valid UTF-8.
bool holdsDeclaration(std::string_view text);

}  // namespace zelvo::OOXML
