#include "DocumentRuntime/PackageIO/KeptTrees.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

namespace zelvo::OOXML {

void KeptTrees::keep(std::string_view name, XMLTree& tree) {
  const std::size_t bytes = tree.byteCount();
  if (bytes > budgetBytes_) return;
  budgetBytes_ -= bytes;
  trees_.push_back({std::string(name), std::move(tree)});
}

XMLNode KeptTrees::root(std::string_view name, const ByteBuffer& part, std::optional<XMLTree>& again) const {
  const auto kept = std::ranges::lower_bound(trees_, name, {}, &KeptTree::name);
  if (kept != trees_.end() && kept->name == name) return kept->tree.root();
  return again.emplace(xml(part.view())).root();
}

}  // namespace zelvo::OOXML
