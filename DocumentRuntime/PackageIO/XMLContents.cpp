#include "DocumentRuntime/PackageIO/XMLContents.hpp"

namespace zelvo {

// Elements are stored in document order, which is also the order of the texts in an element's content.
XMLContents::XMLContents(XMLNode root) : first_(root.index_) {
  const XMLTreeStorage& storage = *root.storage_;
  const std::uint32_t end = storage.elements[first_].end;
  text_.reserve(storage.part.size());  // pages that are never written are never resident
  starts_.reserve(std::size_t{end} - first_ + 1);
  for (std::uint32_t i = first_; i < end; ++i) {
    starts_.push(static_cast<std::uint32_t>(text_.size()));
    XMLNode(storage, i).appendText(text_);
  }
  starts_.push(static_cast<std::uint32_t>(text_.size()));
}

std::string_view XMLContents::of(XMLNode element) const {
  const std::size_t start = starts_[element.index_ - first_];
  const std::size_t end = starts_[element.element().end - first_];
  return std::string_view(text_).substr(start, end - start);
}

}  // namespace zelvo
