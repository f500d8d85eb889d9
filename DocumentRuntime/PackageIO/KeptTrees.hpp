#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::OOXML {

/// A cache, with a fixed budget, of the trees of parts that may be needed again. A part that does not fit is
/// parsed again when it is needed: memory stays bounded, and only the largest packages take longer.
class KeptTrees {
 public:
  static constexpr std::size_t defaultBudgetBytes = std::size_t{32} * 1024 * 1024;

  explicit KeptTrees(std::size_t budgetBytes = defaultBudgetBytes) : budgetBytes_(budgetBytes) {}

  /// Moves the tree into the cache if it fits. Must be called in ascending order of the names.
  void keep(std::string_view name, XMLTree& tree) {
    const std::size_t bytes = tree.byteCount();
    if (bytes > budgetBytes_) return;
    budgetBytes_ -= bytes;
    trees_.push_back({std::string(name), std::move(tree)});
  }

  /// The root of a part that has passed the gate. `fallback` stores the tree of a part that is not cached,
  /// and must then outlive the node. Throws what parsing throws.
  XMLNode root(std::string_view name, const ByteBuffer& part, std::optional<XMLTree>& fallback) const {
    const auto kept = std::ranges::lower_bound(trees_, name, {}, &KeptTree::name);
    if (kept != trees_.end() && kept->name == name) return kept->tree.root();
    return fallback.emplace(xml(part)).root();
  }

 private:
  struct KeptTree {
    std::string name;
    XMLTree tree;
  };
  std::vector<KeptTree> trees_;
  std::size_t budgetBytes_;  ///< not used yet
};

}  // namespace zelvo::OOXML
