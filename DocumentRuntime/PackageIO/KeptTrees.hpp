#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::OOXML {

/// The trees of parts that will be asked for again, kept within a fixed budget. What does not fit is parsed
/// again when it is wanted: memory stays bounded, and only the largest packages pay.
class KeptTrees {
 public:
  static constexpr std::size_t defaultBudgetBytes = std::size_t{32} * 1024 * 1024;

  explicit KeptTrees(std::size_t budgetBytes = defaultBudgetBytes) : budgetBytes_(budgetBytes) {}

  /// Takes the tree over if it fits. To be called in ascending order of the names.
  void keep(std::string_view name, XMLTree& tree);

  /// The root of a part that has passed the gate; `again` holds its tree if it must be parsed again, and must
  /// then outlive the node. Throws what parsing throws.
  XMLNode root(std::string_view name, const ByteBuffer& part, std::optional<XMLTree>& again) const;

 private:
  struct KeptTree {
    std::string name;
    XMLTree tree;
  };
  std::vector<KeptTree> trees_;
  std::size_t budgetBytes_;  ///< for the trees to come
};

}  // namespace zelvo::OOXML
