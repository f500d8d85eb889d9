#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/PackageIO/XMLTreeStorage.hpp"

namespace zelvo {
namespace OOXML {

// The limits of a parsed part.
inline constexpr std::size_t maximumXMLElements = 200'000;
inline constexpr std::size_t maximumXMLDepth = 64;
inline constexpr std::size_t maximumXMLAttributes = 64;  ///< of one element, namespace declarations included

}  // namespace OOXML

class XMLElements;

/// A handle to one element of an `XMLTree`, passed by value. It and the views that it
/// returns are valid while the tree lives, also after the tree is moved.
class XMLNode {
 public:
  XMLNode(const XMLTreeStorage& storage, std::uint32_t index) : storage_(&storage), index_(index) {}

  /// The name after its last colon; empty pieces around colons do not count.
  std::string_view name() const { return storage_->localName(index_).text(); }
  /// The name as written, prefix included.
  std::string_view qualifiedName() const { return storage_->qualifiedName(index_).text(); }

  /// A small number for the qualified name. Elements with equal indexes have equal names. In a part with very
  /// many names, elements of one name may have several indexes.
  std::size_t nameIndex() const { return element().name; }

  std::size_t attributeCount() const { return element().attributeCount; }
  /// The i-th attribute in document order, named as written.
  std::string_view attributeName(std::size_t index) const {
    return storage_->attributeName(attributeAt(index)).text();
  }
  std::string_view attributeValue(std::size_t index) const {
    return storage_->view(attributeAt(index).value);
  }
  /// The value of the attribute of that qualified name.
  std::optional<std::string_view> attribute(XMLName qualifiedName) const {
    for (std::size_t i = 0; i < attributeCount(); ++i) {
      if (storage_->attributeName(attributeAt(i)) == qualifiedName) return attributeValue(i);
    }
    return std::nullopt;
  }

  /// The child elements in document order.
  XMLElements children() const;
  /// The first child of that local name.
  std::optional<XMLNode> child(XMLName name) const;
  /// The children of that local name, direct ones only. `name` must outlive the result.
  XMLElements all(XMLName name) const;
  /// The elements of that local name at any depth below this one, in document order. `name` must outlive the
  /// result.
  XMLElements descendants(XMLName name) const;

  /// The character data directly inside this element, in document order, without that of children.
  std::string text() const;
  /// `text()`, then the content of each child: a view into the tree if that is one run, else into
  /// `storage`, which must then outlive the view.
  std::string_view content(std::string& storage) const;
  std::string content() const;
  /// Whether `content()` is not empty, without building it.
  bool hasContent() const;

 private:
  friend class XMLContents;

  const XMLTreeStorage::Element& element() const { return storage_->elements[index_]; }
  const XMLTreeStorage::Attribute& attributeAt(std::size_t index) const {
    return storage_->attributes[element().firstAttribute + index];
  }
  void appendText(std::string& out) const;
  void appendContent(std::string& out) const;

  const XMLTreeStorage* storage_;
  std::uint32_t index_;
};

/// A range over elements, for `for`. Valid as long as a node is.
class XMLElements {
 public:
  enum class Depth { children, descendants };

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = XMLNode;
    using difference_type = std::ptrdiff_t;
    using pointer = const XMLNode*;
    using reference = XMLNode;

    Iterator(const XMLElements& range, std::uint32_t index) : range_(&range), index_(index) { skip(); }
    XMLNode operator*() const { return {*range_->storage_, index_}; }
    Iterator& operator++() {
      index_ = next();
      skip();
      return *this;
    }
    bool operator==(const Iterator& other) const { return index_ == other.index_; }

   private:
    std::uint32_t next() const {
      return range_->depth_ == Depth::children ? range_->storage_->elements[index_].end : index_ + 1;
    }
    void skip() {
      while (index_ < range_->end_ && !range_->accepts(index_))
        index_ = next();
    }

    const XMLElements* range_;
    std::uint32_t index_;
  };

  XMLElements(const XMLTreeStorage& storage, std::uint32_t parent, Depth depth, std::optional<XMLName> name)
      : storage_(&storage),
        first_(parent + 1),
        end_(storage.elements[parent].end),
        depth_(depth),
        name_(name) {}

  Iterator begin() const { return {*this, first_}; }
  Iterator end() const { return {*this, end_}; }
  bool empty() const { return begin() == end(); }
  /// Takes time linear in the range.
  std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }
  /// The element, if there is exactly one.
  std::optional<XMLNode> only() const {
    const Iterator first = begin();
    if (first == end() || std::next(first) != end()) return std::nullopt;
    return *first;
  }

 private:
  bool accepts(std::uint32_t index) const { return !name_ || storage_->localName(index) == *name_; }

  const XMLTreeStorage* storage_;
  std::uint32_t first_;
  std::uint32_t end_;
  Depth depth_;
  std::optional<XMLName> name_;
};

// Inline, so that the word of a constant name is computed when the program is compiled.

inline XMLElements XMLNode::children() const {
  return {*storage_, index_, XMLElements::Depth::children, std::nullopt};
}

inline XMLElements XMLNode::all(XMLName name) const {
  return {*storage_, index_, XMLElements::Depth::children, name};
}

inline XMLElements XMLNode::descendants(XMLName name) const {
  return {*storage_, index_, XMLElements::Depth::descendants, name};
}

inline std::optional<XMLNode> XMLNode::child(XMLName name) const {
  const std::uint32_t end = element().end;
  for (std::uint32_t i = index_ + 1; i < end; i = storage_->elements[i].end) {
    if (storage_->localName(i) == name) return XMLNode(*storage_, i);
  }
  return std::nullopt;
}

/// One parsed part. Move-only; owns everything that its nodes refer to, the part's bytes together with other
/// owners.
class XMLTree {
 public:
  /// `storage` must hold at least the root element.
  explicit XMLTree(std::unique_ptr<const XMLTreeStorage> storage) : storage_(std::move(storage)) {}

  XMLNode root() const { return {*storage_, 0}; }

  /// The memory that the tree uses in addition to the part.
  std::size_t byteCount() const;

 private:
  std::unique_ptr<const XMLTreeStorage> storage_;
};

}  // namespace zelvo
