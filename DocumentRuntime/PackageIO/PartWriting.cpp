#include "DocumentRuntime/PackageIO/PartWriting.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/PackageIO/XMLCharacters.hpp"

namespace zelvo::OOXML {
namespace {

/// Marks the bytes at which `escaped` may have to stop copying: special characters, control characters, and
/// the first byte of a noncharacter.
constexpr auto endsRun = [] {
  std::array<bool, 256> marks{};
  for (unsigned char byte = 0; byte < 0x20; ++byte)
    marks[byte] = !isAllowed(byte);
  for (const char special : {'&', '<', '>', '"', '\'', noncharacterStart})
    marks[static_cast<unsigned char>(special)] = true;
  return marks;
}();

}  // namespace

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

std::string escaped(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  std::size_t run = 0;  // start of the bytes that are copied unchanged
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!endsRun[static_cast<unsigned char>(text[i])]) continue;
    const bool multibyte = text[i] == noncharacterStart;
    if (multibyte && !startsWithNoncharacter(text.substr(i))) continue;
    out.append(text, run, i - run);
    out += entity(text[i]);
    if (multibyte) i += noncharacterBytes - 1;
    run = i + 1;
  }
  out.append(text, run);
  return out;
}

ByteBuffer data(std::string_view xml) {
  ByteBuffer bytes(xmlDeclaration.size() + xml.size());
  std::copy(xml.begin(), xml.end(), std::copy(xmlDeclaration.begin(), xmlDeclaration.end(), bytes.data()));
  return bytes;
}

ByteBuffer relationships(const std::vector<Relationship>& list) {
  std::string xml = R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">)";
  for (const Relationship& relationship : list) {
    const bool isWhole = relationship.type.find(':') != std::string::npos;
    append(xml, R"(<Relationship Id=")", escaped(relationship.identifier), R"(" Type=")",
           isWhole ? std::string_view() : relationshipTypes, relationship.type, R"(" Target=")",
           escaped(relationship.target), R"("/>)");
  }
  xml += "</Relationships>";
  return OOXML::data(xml);
}

ByteBuffer contentTypes(const std::vector<ContentTypeOverride>& overrides, bool embeddedWorkbook) {
  std::string xml =
      R"(<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">)"
      R"(<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>)"
      R"(<Default Extension="xml" ContentType="application/xml"/>)";
  if (embeddedWorkbook) {
    xml += R"(<Default Extension="xlsx" )"
           R"(ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet"/>)";
  }
  for (const auto& [partName, contentType] : overrides)
    append(xml, R"(<Override PartName="/)", partName, R"(" ContentType=")", contentType, R"("/>)");
  xml += "</Types>";
  return OOXML::data(xml);
}

}  // namespace zelvo::OOXML
