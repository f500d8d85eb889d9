#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// A written deck, opened through the package gate and followed from part to part as an office program does.
/// Owns its parts and their trees.
class DeliveredPackage {
 public:
  struct Chart {
    XMLNode chartSpace;
    const ByteBuffer* workbook;
  };

  /// Throws what the gate throws, and `Cancelled`.
  DeliveredPackage(ByteView deck, const std::stop_token& stop);

  /// The slides that the show leads to, in its order. Valid while this lives, as all that comes out is.
  const std::vector<XMLNode>& slides() const { return slides_; }

  /// Whether a slide holds anything that is drawn as a chart, whatever it leads to.
  bool showsChart(std::size_t slide) const;

  /// The one chart of a slide with the workbook behind it; none where there is not exactly one, or where it
  /// leads nowhere.
  std::optional<Chart> chartOf(std::size_t slide) const;

 private:
  /// The root of a parsed part; none where there is no such part.
  std::optional<XMLNode> root(std::string_view name) const;
  /// The name of the part that a part's relationship leads to.
  std::optional<std::string> related(const std::string& name, std::string_view identifier) const;

  std::map<std::string, XMLTree, std::less<>> trees_;
  PartMap parts_;
  std::vector<std::string> slideNames_;
  std::vector<XMLNode> slides_;
};

}  // namespace zelvo
