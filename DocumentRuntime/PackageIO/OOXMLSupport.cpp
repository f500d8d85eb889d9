#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/PackageIO/TargetResolver.hpp"
#include "Text/Digest.hpp"

namespace zelvo::OOXML {
namespace {

constexpr std::string_view declaration = R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";
constexpr std::string_view relationshipsStart =
    R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";
constexpr std::string_view relationshipsEnd = "</Relationships>";
constexpr std::string_view relationshipTypes =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

/// U+FFFE and U+FFFF, the two scalars above the control characters that XML cannot carry, differ in their
/// last byte only.
constexpr std::string_view noncharacterStart = "\xEF\xBF";
constexpr std::size_t noncharacterBytes = 3;
bool isNoncharacter(std::string_view text) {
  return text.starts_with(noncharacterStart) && text.size() >= noncharacterBytes &&
         (text[2] == '\xBE' || text[2] == '\xBF');
}

/// Marks the bytes that `escaped` cannot take over with the run that they stand in.
constexpr auto endsRun = [] {
  std::array<bool, 256> marks{};
  std::fill_n(marks.begin(), 0x20, true);
  for (const char kept : {'\t', '\n', '\r'})
    marks[static_cast<unsigned char>(kept)] = false;
  for (const char special : {'&', '<', '>', '"', '\''})
    marks[static_cast<unsigned char>(special)] = true;
  marks[static_cast<unsigned char>(noncharacterStart.front())] = true;
  return marks;
}();

/// What stands for a special character; nothing for a control character.
std::string_view entity(char character) {
  switch (character) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&apos;";
    default:
      return {};
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t run = 0;  // what lies between here and `i` is copied as it is
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!endsRun[static_cast<unsigned char>(text[i])]) continue;
    const bool multibyte = text[i] == noncharacterStart.front();
    if (multibyte && !isNoncharacter(text.substr(i))) continue;
    out.append(text, run, i - run);
    out += entity(text[i]);
    if (multibyte) i += noncharacterBytes - 1;
    run = i + 1;
  }
  out.append(text, run);
  return out;
}

ByteBuffer data(std::string_view xml) {
  ByteBuffer bytes(declaration.size() + xml.size());
  std::copy(xml.begin(), xml.end(), std::copy(declaration.begin(), declaration.end(), bytes.data()));
  return bytes;
}

ByteBuffer relationships(const std::vector<Relationship>& list) {
  std::string xml(relationshipsStart);
  for (const Relationship& relationship : list) {
    xml += R"(<Relationship Id=")";
    xml += escaped(relationship.identifier);
    xml += R"(" Type=")";
    xml += relationshipTypes;
    xml += relationship.type;
    xml += R"(" Target=")";
    xml += escaped(relationship.target);
    xml += R"("/>)";
  }
  xml += relationshipsEnd;
  return OOXML::data(xml);
}

std::string hash(ByteView bytes) {
  return Digest::sha256(bytes);
}

std::string resolve(std::string_view target, std::string_view relationshipPart) {
  return TargetResolver(relationshipPart).resolve(target);
}

}  // namespace zelvo::OOXML
