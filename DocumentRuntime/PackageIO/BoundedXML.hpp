#pragma once

#include <cstddef>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// XML parts of packages, parsed under limits: no document type, no entity declaration, bounded in size,
/// elements, depth and attributes. Namespaces are not processed: a prefix is a part of the name.
namespace zelvo::OOXML {

inline constexpr std::size_t maximumXMLBytes = 16'777'216;
inline constexpr std::size_t maximumXMLElements = 200'000;
inline constexpr std::size_t maximumXMLDepth = 64;
inline constexpr std::size_t maximumXMLAttributes = 64;  ///< of one element, namespace declarations included

/// Parses one part. Throws `DocumentError`, in this order of checks: unsupported "XML encoding or size";
/// unsafeContent "XML DTD or entity declaration"; and while parsing resourceLimit "XML structure" or
/// invalidArchive "malformed XML", which a second root and an undeclared entity are too. Without declarations
/// no external entity can exist, so that none is ever asked for.
XMLTree xml(ByteView part);

}  // namespace zelvo::OOXML
