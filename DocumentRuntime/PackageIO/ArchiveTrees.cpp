#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"

#include <utility>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

namespace zelvo::OOXML {

XMLNode ArchiveTrees::root(const Entry& part) {
  last_.reset();
  if (const auto kept = kept_.find(&part); kept != kept_.end()) return kept->second.root();

  const ByteBuffer bytes = archive_.expand(part);
  XMLTree tree = xml(bytes);
  const std::size_t size = bytes.size() + tree.byteCount();
  if (size > budgetBytes - keptBytes_) return last_.emplace(std::move(tree)).root();
  keptBytes_ += size;
  return kept_.emplace(&part, std::move(tree)).first->second.root();
}

}  // namespace zelvo::OOXML
