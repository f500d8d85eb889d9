#pragma once

#include <cstddef>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

/// A written deck, opened through the package gate and followed from part to part as an office program does.
/// Owns its parts. No tree is kept: a part is parsed again where it is asked for, so that memory holds one
/// tree at a time.
class DeliveredPackage {
 public:
  struct Slide {
    std::string name;  ///< of the part
    XMLTree tree;

    XMLNode root() const { return tree.root(); }
    /// Whether the slide holds anything that is drawn as a chart, whatever it leads to.
    bool showsChart() const;
  };

  struct Chart {
    XMLTree tree;
    const ByteBuffer* workbook;  ///< valid while the package lives
  };

  /// Throws what the gate throws, and `Cancelled`.
  DeliveredPackage(ByteView deck, const std::stop_token& stop);

  /// The slides that the show leads to.
  std::size_t slideCount() const { return slideNames_.size(); }

  /// A slide by its place in the show.
  Slide slide(std::size_t index) const;

  /// The name of the part of a slide's one chart; none where there is not exactly one, or where it leads
  /// nowhere.
  std::optional<std::string> chartName(const Slide& slide) const;

  /// A chart part with the workbook behind it; none where one of them is missing.
  std::optional<Chart> chart(const std::string& name) const;

 private:
  /// A parsed part; none where there is no such part.
  std::optional<XMLTree> parsed(std::string_view name) const;
  /// The names of the parts that a part's relationships lead to, for each identifier in turn.
  std::vector<std::optional<std::string>> related(const std::string& name,
                                                  const std::vector<std::string_view>& identifiers) const;

  PartMap parts_;
  std::vector<std::string> slideNames_;
};

}  // namespace zelvo
