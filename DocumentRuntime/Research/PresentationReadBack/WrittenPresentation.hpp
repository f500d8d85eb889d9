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

/// A written deck, opened through the package gate. Parts are found by their relationships, as in office
/// programs. Owns its parts. Trees are not cached: each call parses its part, so that there is one tree in
/// memory at a time.
class WrittenPresentation {
 public:
  struct Slide {
    std::string name;  ///< of the part
    XMLTree tree;

    XMLNode root() const { return tree.root(); }
    /// Whether the slide has a chart element, even one without a chart part.
    bool showsChart() const;
  };

  struct Chart {
    XMLTree tree;
    const ByteBuffer* workbook;  ///< valid while the package lives
  };

  /// Throws what the gate throws, and `Cancelled`.
  WrittenPresentation(ByteView deck, const std::stop_token& stop);

  /// The title in the document's properties; empty if it is missing.
  std::string title() const;

  /// The slides of the presentation's slide list that have a part.
  std::size_t slideCount() const { return slideNames_.size(); }

  /// A slide by its position in the slide list.
  Slide slide(std::size_t index) const;

  /// The name of the part of a slide's only chart. Returns nullopt if there is not exactly one, or if its
  /// relationship is missing.
  std::optional<std::string> chartName(const Slide& slide) const;

  /// A chart part with its workbook. Returns nullopt if one of them is missing.
  std::optional<Chart> chart(const std::string& name) const;

 private:
  /// A parsed part. Returns nullopt if there is no such part.
  std::optional<XMLTree> parsed(std::string_view name) const;
  /// The names of the parts that a part's relationships refer to, for each identifier in turn.
  std::vector<std::optional<std::string>> related(const std::string& name,
                                                  const std::vector<std::string_view>& identifiers) const;

  PartMap parts_;
  std::vector<std::string> slideNames_;
};

}  // namespace zelvo
