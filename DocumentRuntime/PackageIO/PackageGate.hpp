#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* notAPackage = "not an OOXML package";
inline constexpr const char* activeFeature = "active data connection or unsupported workbook feature";
inline constexpr const char* embeddedObject = "embedded object";
inline constexpr const char* nonXMLPart = "non-XML package part";
inline constexpr const char* activeContentType = "active content type";
inline constexpr const char* externalRelationship = "external or ambiguous relationship";
inline constexpr const char* missingTarget = "missing relationship target";

}  // namespace zelvo::RefusalDetail

/// The checks that every package passes before any of its contents are used.
namespace zelvo::OOXML {

/// The embedded workbooks that the gate allows; it refuses all others.
struct PackageAllowance {
  bool chartWorkbook = false;           ///< ppt/embeddings/chart-data.xlsx, in any letter case
  bool researchChartWorkbooks = false;  ///< ppt/embeddings/chart-data1.xlsx … chart-data4.xlsx
};

/// Called with every parsed part that has passed, in ascending byte order of the names. A visitor that needs
/// a tree later must move it.
using PartVisitor = std::function<void(std::string_view name, XMLTree& tree)>;

/// Opens a package and vets all of it: every XML part is parsed, once, and every relationship must be
/// internal, unambiguous, and have an existing part as its target. Throws what `BoundedZIP::read` and
/// `vetted` throw.
PartMap package(ByteView bytes, PackageAllowance allowance = {}, const PartVisitor& visitor = {},
                const std::stop_token& stop = {});

/// The second half of `package`, for callers that free the archive's bytes once it is read. Returns the
/// parts.
///
/// Throws `DocumentError`: invalidArchive "not an OOXML package", "relationships root" or "missing
/// relationship target"; unsafeContent "active data connection or unsupported workbook feature", "embedded
/// object", "active content type" or "external or ambiguous relationship"; unsupported "non-XML package
/// part"; and those of `xml` and `resolve`. Throws `Cancelled` (checked once per part), and what the visitor
/// throws.
PartMap vetted(PartMap parts, PackageAllowance allowance = {}, const PartVisitor& visitor = {},
               const std::stop_token& stop = {});

/// SHA-256 as 64 lower-case hexadecimal digits.
std::string hash(ByteView bytes);

}  // namespace zelvo::OOXML
