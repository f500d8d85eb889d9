#include "DocumentRuntime/PackageIO/OOXMLSupport.hpp"

#include <algorithm>
#include <array>
#include <optional>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Text/Digest.hpp"
#include "Text/Unicode.hpp"

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

std::optional<unsigned> hexDigit(char character) {
  if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
  if (character >= 'A' && character <= 'F') return static_cast<unsigned>(character - 'A') + 10;
  if (character >= 'a' && character <= 'f') return static_cast<unsigned>(character - 'a') + 10;
  return std::nullopt;
}

/// The text behind the percent escapes, or nothing when an escape is broken or the bytes are no UTF-8.
std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const auto high = hexDigit(text[i + 1]);
    const auto low = hexDigit(text[i + 2]);
    if (!high || !low) return std::nullopt;
    decoded += static_cast<char>(*high << 4 | *low);
    i += 2;
  }
  if (!Unicode::isValid(decoded)) return std::nullopt;
  return decoded;
}

/// Schemes, drives, streams, fragments, queries, and what separates folders elsewhere.
bool isRefusedInTarget(char byte) {
  return byte == ':' || byte == '\\' || byte == '#' || byte == '?' || static_cast<unsigned char>(byte) < 0x20;
}

/// Takes the first non-empty piece between slashes off `path`; the result is empty when there is none.
std::string_view takePiece(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const std::string_view piece = path.substr(0, path.find('/'));
  path.remove_prefix(piece.size());
  return piece;
}

void appendPiece(std::string& path, std::string_view piece) {
  if (!path.empty()) path += '/';
  path += piece;
}

void removeLastPiece(std::string& path) {
  const std::size_t slash = path.rfind('/');
  path.resize(slash == std::string::npos ? 0 : slash);
}

/// The folder whose parts a relationships part speaks for: the one that holds its "_rels".
std::string baseDirectory(std::string_view relationshipPart) {
  std::string path;
  while (!relationshipPart.empty()) {
    const std::string_view piece = takePiece(relationshipPart);
    if (!piece.empty()) appendPiece(path, piece);
  }
  removeLastPiece(path);
  if (path != "_rels" && !path.ends_with("/_rels"))
    throw DocumentError::invalidArchive("relationship location");
  removeLastPiece(path);
  return path;
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
  // Decoded before anything is looked at: %2F and %2E climb like the characters that they stand for.
  const std::optional<std::string> decoded = percentDecoded(target);
  if (!decoded || std::any_of(decoded->begin(), decoded->end(), isRefusedInTarget)) {
    throw DocumentError::unsafeContent("relationship URI");
  }

  std::string path = baseDirectory(relationshipPart);
  std::string_view rest = *decoded;
  if (rest.starts_with('/')) path.clear();
  while (!rest.empty()) {
    const std::string_view piece = takePiece(rest);
    if (piece == "..") {
      if (path.empty()) throw DocumentError::unsafeContent("relationship traversal");
      removeLastPiece(path);
    } else if (!piece.empty() && piece != ".") {
      appendPiece(path, piece);
    }
  }
  if (!BoundedZIP::safeName(path)) throw DocumentError::unsafeContent("relationship path");
  return path;
}

}  // namespace zelvo::OOXML
