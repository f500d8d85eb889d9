#include "DocumentRuntime/PackageIO/XMLTree.hpp"

namespace zelvo {

std::string XMLNode::text() const {
  std::string out;
  appendText(out);
  return out;
}

std::string_view XMLNode::content(std::string& storage) const {
  const bool isLeaf = element().end == index_ + 1;
  if (isLeaf && element().moreText == XMLTreeStorage::none) return storage_->view(element().text);
  storage.clear();
  appendContent(storage);
  return storage;
}

std::string XMLNode::content() const {
  std::string out;
  appendContent(out);
  return out;
}

bool XMLNode::hasContent() const {
  for (std::uint32_t i = index_; i < element().end; ++i) {
    if (storage_->elements[i].text.length > 0) return true;
  }
  return false;
}

void XMLNode::appendText(std::string& out) const {
  out += storage_->view(element().text);
  for (auto i = element().moreText; i != XMLTreeStorage::none; i = storage_->moreText[i].next) {
    out += storage_->view(storage_->moreText[i].span);
  }
}

// Recursion is bounded by the depth that the parser allows.
void XMLNode::appendContent(std::string& out) const {
  appendText(out);
  for (const XMLNode child : children())
    child.appendContent(out);
}

std::size_t XMLTree::byteCount() const {
  return storage_->decoded.byteCount() + storage_->names.byteCount() + storage_->attributes.byteCount() +
         storage_->moreText.byteCount() + storage_->elements.byteCount();
}

}  // namespace zelvo
