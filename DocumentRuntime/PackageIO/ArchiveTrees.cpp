#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"

#include <utility>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

namespace zelvo::OOXML {

XMLNode ArchiveTrees::root(const Entry& part) {
  last_.reset();
  if (const auto kept = kept_.find(&part); kept != kept_.end()) return kept->second.tree.root();

  ByteBuffer bytes = archive_.expand(part);
  XMLTree tree = xml(bytes.view());
  const std::size_t size = bytes.size() + tree.byteCount();
  ParsedPart parsed{std::move(bytes), std::move(tree)};
  if (size > budgetBytes - keptBytes_) return last_.emplace(std::move(parsed)).tree.root();
  keptBytes_ += size;
  return kept_.emplace(&part, std::move(parsed)).first->second.tree.root();
}

}  // namespace zelvo::OOXML
