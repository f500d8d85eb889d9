#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"

#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::OOXML {
namespace {

using Span = XMLTreeStorage::Span;

/// FNV-1a; collisions cost nothing but memory here.
std::size_t hashOf(std::string_view name) {
  std::uint32_t hash = 2'166'136'261U;
  for (const char c : name)
    hash = (hash ^ static_cast<unsigned char>(c)) * 16'777'619U;
  return hash;
}

XMLTreeStorage::Name named(Span qualified, std::string_view text) {
  // "a:b:" is local "b": empty pieces around colons do not count. A name of colons only is its own local
  // name.
  const std::size_t last = text.find_last_not_of(':');
  if (last == std::string_view::npos) return {qualified, 0, qualified.length};
  const std::size_t colon = text.rfind(':', last);
  const std::size_t first = colon == std::string_view::npos ? 0 : colon + 1;
  return {qualified, static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(last + 1 - first)};
}

}  // namespace

XMLTreeBuilder::XMLTreeBuilder(std::size_t partBytes) : storage_(std::make_unique<Storage>()) {
  storage_->characters.reserve(partBytes);
  nameTable_.fill(Storage::none);
}

void XMLTreeBuilder::start(std::string_view qualifiedName, std::size_t attributeCount) {
  if (storage_->elements.size() >= maximumXMLElements || depth_ >= maximumXMLDepth ||
      attributeCount > maximumXMLAttributes) {
    throw DocumentError::resourceLimit(RefusalDetail::xmlStructure);
  }
  const auto index = static_cast<std::uint32_t>(storage_->elements.size());
  const auto firstAttribute = static_cast<std::uint32_t>(storage_->attributes.size());
  storage_->elements.push({.name = nameIndex(qualifiedName),
                           .end = index + 1,
                           .firstAttribute = firstAttribute,
                           .attributeCount = static_cast<std::uint32_t>(attributeCount),
                           .text = {0, 0},
                           .moreText = Storage::none});
  open_[depth_++] = {index, Storage::none};
}

void XMLTreeBuilder::attribute(std::string_view qualifiedName, std::string_view value) {
  const Span name = store(qualifiedName);
  storage_->attributes.push({name.offset, name.length, store(value).length});
}

void XMLTreeBuilder::characters(std::string_view text) {
  if (depth_ == 0 || text.empty()) return;
  const Span added = store(text);
  OpenElement& open = open_[depth_ - 1];
  Storage::Element& element = storage_->elements[open.element];
  if (element.text.length == 0) {
    element.text = added;
    return;
  }
  Span& current = open.lastText == Storage::none ? element.text : storage_->moreText[open.lastText].span;
  if (current.offset + current.length == added.offset) {
    current.length += added.length;
    return;
  }
  const auto index = static_cast<std::uint32_t>(storage_->moreText.size());
  storage_->moreText.push({added, Storage::none});
  (open.lastText == Storage::none ? element.moreText : storage_->moreText[open.lastText].next) = index;
  open.lastText = index;
}

void XMLTreeBuilder::end() {
  --depth_;
  storage_->elements[open_[depth_].element].end = static_cast<std::uint32_t>(storage_->elements.size());
}

XMLTree XMLTreeBuilder::finish() {
  storage_->characters.shrinkToFit();
  return XMLTree(std::move(storage_));
}

std::uint32_t XMLTreeBuilder::nameIndex(std::string_view qualifiedName) {
  const std::size_t hash = hashOf(qualifiedName);
  std::uint32_t* free = nullptr;
  for (std::size_t probe = 0; probe < nameProbes; ++probe) {
    std::uint32_t& slot = nameTable_[(hash + probe) % nameSlots];
    if (slot == Storage::none) {
      free = &slot;
      break;
    }
    if (storage_->view(storage_->names[slot].qualified) == qualifiedName) return slot;
  }
  const auto index = static_cast<std::uint32_t>(storage_->names.size());
  storage_->names.push(named(store(qualifiedName), qualifiedName));
  if (free != nullptr) *free = index;
  return index;
}

Span XMLTreeBuilder::store(std::string_view text) {
  const auto offset = static_cast<std::uint32_t>(storage_->characters.size());
  storage_->characters.append(text.data(), text.size());
  return {offset, static_cast<std::uint32_t>(text.size())};
}

}  // namespace zelvo::OOXML
