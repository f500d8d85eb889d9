#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace zelvo {

class XMLTree;

/// A handle to one element, passed by value. Valid while its tree lives; moving the tree keeps it valid. The views that
/// it gives live as long.
class XMLNode {
 public:
  class Children;

  /// The name after its last colon.
  std::string_view name() const;
  /// The name as written, prefix included.
  std::string_view qualifiedName() const;

  std::size_t attributeCount() const;
  /// The i-th attribute in document order, named as written.
  std::string_view attributeName(std::size_t index) const;
  std::string_view attributeValue(std::size_t index) const;
  /// The value of the attribute of that qualified name.
  std::optional<std::string_view> attribute(std::string_view qualifiedName) const;

  /// The child elements in document order.
  Children children() const;
  /// The first child of that local name.
  std::optional<XMLNode> child(std::string_view name) const;
  /// The children of that local name, direct ones only.
  Children all(std::string_view name) const;
  /// The elements of that local name at any depth below this one, in document order.
  Children descendants(std::string_view name) const;

  /// The character data directly inside this element, then the content of each child: a view into the tree when that is
  /// one run, else into `storage`, which must then outlive the view.
  std::string_view content(std::string& storage) const;
  std::string content() const;
  /// `content().empty()`, without building it.
  bool hasContent() const;

  /// The character data directly inside this element only.
  std::string text() const;

  friend bool operator==(const XMLNode&, const XMLNode&) = default;

 private:
  friend class XMLTree;
  XMLNode(const struct XMLTreeStorage* storage, std::uint32_t index) : storage_(storage), index_(index) {}

  const struct XMLTreeStorage* storage_;
  std::uint32_t index_;
};

}  // namespace zelvo
