#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::OOXML {
namespace {

using Span = XMLTreeStorage::Span;

// The shortest texts of an element and of an attribute with the space before it: <b/> and a="".
constexpr std::size_t minimumElementBytes = 4;
constexpr std::size_t minimumAttributeBytes = 5;

/// Collisions cost nothing but memory here.
std::size_t hashOf(const XMLName& name) {
  constexpr std::uint64_t mix = 0x9E37'79B9'7F4A'7C15;  // 2^64 divided by the golden ratio
  return static_cast<std::size_t>((name.word() + name.size()) * mix >> 32);
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

XMLTreeBuilder::XMLTreeBuilder(const ByteBuffer& part) : storage_(std::make_unique<Storage>(part.shared())) {
  // Growing would copy what was read so far. Pages that are never written are never resident.
  storage_->elements.reserve(std::min(part.size() / minimumElementBytes, maximumXMLElements));
  storage_->attributes.reserve(part.size() / minimumAttributeBytes);
  nameTable_.fill(Storage::none);
}

void XMLTreeBuilder::decodedCharacters(std::string_view text) {
  if (text.empty()) return;
  if (lastText().length == 0) {
    lastText() = copied(text);
  } else {
    join(text);
  }
}

void XMLTreeBuilder::join(std::string_view text) {
  Span& last = lastText();
  // Every byte is copied at most once: decoded text is not copied again.
  if ((last.offset & Storage::isDecoded) == 0) last = copied(storage_->view(last));
  const Span added = copied(text);
  if (last.offset + last.length == added.offset) {
    last.length += added.length;
    return;
  }
  OpenElement& open = open_[depth_ - 1];
  const auto index = static_cast<std::uint32_t>(storage_->moreText.size());
  (open.lastText == Storage::none ? storage_->elements[open.element].moreText
                                  : storage_->moreText[open.lastText].next) = index;
  storage_->moreText.push({added, Storage::none});
  open.lastText = index;
}

XMLTree XMLTreeBuilder::finish() {
  storage_->elements.shrinkToFit();
  storage_->attributes.shrinkToFit();
  return XMLTree(std::move(storage_));
}

std::uint32_t XMLTreeBuilder::nameIndex(const XMLName& qualifiedName) {
  const std::size_t hash = hashOf(qualifiedName);
  std::uint32_t* free = nullptr;
  for (std::size_t probe = 0; probe < nameProbes; ++probe) {
    std::uint32_t& slot = nameTable_[(hash + probe) % nameSlots];
    if (slot == Storage::none) {
      free = &slot;
      break;
    }
    if (storage_->qualifiedName(storage_->names[slot]) == qualifiedName) return slot;
  }
  const auto index = static_cast<std::uint32_t>(storage_->names.size());
  storage_->names.push(named(inPart(qualifiedName.text()), qualifiedName.text()));
  if (free != nullptr) *free = index;
  return index;
}

Span XMLTreeBuilder::copied(std::string_view text) {
  const auto offset = static_cast<std::uint32_t>(storage_->decoded.size());
  storage_->decoded.append(text.data(), text.size());
  return {offset | Storage::isDecoded, static_cast<std::uint32_t>(text.size())};
}

void XMLTreeBuilder::refuseStructure() {
  throw DocumentError::resourceLimit(RefusalDetail::xmlStructure);
}

}  // namespace zelvo::OOXML
