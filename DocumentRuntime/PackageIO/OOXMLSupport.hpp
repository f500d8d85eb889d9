#pragma once

#include <functional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// What every reader and author of Office Open XML packages shares, and the gate that every package passes.
namespace zelvo::OOXML {

/// One relationship to write. `type` is the last segment of the relationship type's URI, a fixed word of the
/// program; identifier and target are escaped when written.
struct Relationship {
  std::string identifier;
  std::string type;
  std::string target;
};

/// `text` for an XML text node or attribute value: the five special characters as entities, and without the
/// control characters that XML cannot carry.
std::string escaped(std::string_view text);

/// A part's bytes: the XML declaration, then the body.
ByteBuffer data(std::string_view xml);

/// A whole relationships part.
ByteBuffer relationships(const std::vector<Relationship>& list);

/// SHA-256 as 64 lower-case hexadecimal digits.
std::string hash(ByteView bytes);

/// The part that a relationship's target names, seen from the relationships part that holds it. Throws
/// `DocumentError` unsafeContent "relationship URI", "relationship traversal" or "relationship path", or
/// invalidArchive "relationship location".
std::string resolve(std::string_view target, std::string_view relationshipPart);

/// Which embedded workbooks the gate lets pass; it refuses all others.
struct PackageAllowance {
  bool chartWorkbook = false;           ///< ppt/embeddings/chart-data.xlsx, in any letter case
  bool researchChartWorkbooks = false;  ///< ppt/embeddings/chart-data1.xlsx … chart-data4.xlsx
};

/// Called with every parsed part, in ascending byte order of the names, once the gate has found nothing wrong
/// with it. A visitor that wants a tree later moves it out.
using PartVisitor = std::function<void(std::string_view name, XMLTree& tree)>;

/// Opens a package and vets all of it: every XML part is parsed, once, and every relationship is proved
/// internal, unambiguous and leading to a part. Throws what `BoundedZIP::read` and `vetted` throw.
PartMap package(ByteView bytes, PackageAllowance allowance = {}, const PartVisitor& visitor = {},
                const std::stop_token& stop = {});

/// The second half of `package`, for callers who free the archive's bytes once it is read. Gives the parts
/// back.
///
/// Throws `DocumentError`: invalidArchive "not an OOXML package", "relationships root" or "missing
/// relationship target"; unsafeContent "active data connection or unsupported workbook feature", "embedded
/// object", "active content type" or "external or ambiguous relationship"; unsupported "non-XML package
/// part"; and those of `xml` and `resolve`. Throws `Cancelled` (looked at once per part), and what the
/// visitor throws.
PartMap vetted(PartMap parts, PackageAllowance allowance = {}, const PartVisitor& visitor = {},
               const std::stop_token& stop = {});

}  // namespace zelvo::OOXML
