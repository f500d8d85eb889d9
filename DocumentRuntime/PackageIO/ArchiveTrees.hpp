#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <stop_token>

#include "DocumentRuntime/PackageIO/BoundedZIPArchive.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo::OOXML {

/// The parts of an archive as XML, each expanded and parsed on request. Trees are cached within a fixed
/// budget; a part that does not fit is parsed again on each request.
class ArchiveTrees {
 public:
  using Entry = BoundedZIP::Archive::Entry;
  static constexpr std::size_t budgetBytes = std::size_t{32} * 1024 * 1024;

  /// `archive` must outlive this. Throws as `BoundedZIP::Archive` does.
  explicit ArchiveTrees(ByteView archive, const std::stop_token& stop = {}) : archive_(archive, stop) {}

  const BoundedZIP::Archive& archive() const { return archive_; }

  /// The root of a part, valid until the next call. Throws what expanding and parsing throw.
  XMLNode root(const Entry& part);

 private:
  BoundedZIP::Archive archive_;
  std::map<const Entry*, XMLTree> kept_;
  std::size_t keptBytes_ = 0;
  std::optional<XMLTree> last_;
};

}  // namespace zelvo::OOXML
