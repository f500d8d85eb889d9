#include "DocumentRuntime/Cleaning/PartWriter.hpp"

#include <array>
#include <charconv>
#include <utility>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

namespace zelvo::Cleaning {
namespace {

/// The reference that replaces a character in text or between double quotes. A raw carriage return would be
/// read as a line feed, and a tab or line feed between quotes as a space.
std::string_view reference(char character) {
  switch (character) {
    case '\r':
      return "&#13;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    default:
      return OOXML::entity(character);
  }
}

constexpr std::array<bool, 256> marked(std::string_view characters) {
  std::array<bool, 256> marks{};
  for (const char character : characters)
    marks[static_cast<unsigned char>(character)] = true;
  return marks;
}

constexpr auto escapedInText = marked("&<>\r");
constexpr auto escapedInValue = marked("&<>\r\"\t\n");

}  // namespace

// The size of the largest part, so that nothing is copied as the text grows. Pages that are never written are
// never resident.
PartWriter::PartWriter() {
  xml_.reserve(OOXML::maximumXMLBytes);
}

void PartWriter::begin(Tag root, std::string place) {
  xml_.clear();
  elements_ = 0;
  isTagOpen_ = false;
  root_ = root;
  place_ = std::move(place);
  detail_.clear();
  append(OOXML::xmlDeclaration);
  start(root);
  append(namespaceDeclarations(root));
}

std::string_view PartWriter::finish() {
  end(root_);
  return xml_;
}

void PartWriter::start(Tag tag) {
  closeStartTag();
  if (++elements_ > OOXML::maximumXMLElements) refuse("more than 200,000 XML elements in ");
  append("<");
  append(rule(tag).name);
  isTagOpen_ = true;
}

void PartWriter::attribute(Attribute attribute, std::string_view value) {
  append(" ");
  append(name(attribute));
  append("=\"");
  appendEscaped(value, escapedInValue);
  append("\"");
}

void PartWriter::text(std::string_view text) {
  if (text.empty()) return;
  closeStartTag();
  appendEscaped(text, escapedInText);
}

void PartWriter::end(Tag tag) {
  if (isTagOpen_) {
    append("/>");
    isTagOpen_ = false;
    return;
  }
  append("</");
  append(rule(tag).name);
  append(">");
}

void PartWriter::requireCapacity(std::size_t bytes) const {
  if (bytes > OOXML::maximumXMLBytes - xml_.size()) refuse("more than 16 MiB of XML in ");
}

void PartWriter::refuse(const char* limit) const {
  throw DocumentError::resourceLimit(limit + place_ + detail_);
}

void PartWriter::number(Attribute attribute, std::int64_t value) {
  char digits[24];
  const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  this->attribute(attribute, std::string_view(digits, static_cast<std::size_t>(end - digits)));
}

void PartWriter::closeStartTag() {
  if (!isTagOpen_) return;
  append(">");
  isTagOpen_ = false;
}

void PartWriter::append(std::string_view fixed) {
  requireCapacity(fixed.size());
  xml_ += fixed;
}

void PartWriter::appendEscaped(std::string_view text, const std::array<bool, 256>& isEscaped) {
  std::size_t run = 0;  // start of the bytes that are copied unchanged
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!isEscaped[static_cast<unsigned char>(text[i])]) continue;
    append(text.substr(run, i - run));
    append(reference(text[i]));
    run = i + 1;
  }
  append(text.substr(run));
}

}  // namespace zelvo::Cleaning
