#include "DocumentRuntime/PackageIO/Relationships.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// Decodes percent escapes. Returns nullopt for an incomplete escape, and if the result is not valid UTF-8.
std::optional<std::string> percentDecoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    if (text.size() - i < 3) return std::nullopt;
    const auto high = ASCII::hexValue(text[i + 1]);
    const auto low = ASCII::hexValue(text[i + 2]);
    if (!high || !low) return std::nullopt;
    decoded += static_cast<char>(*high << 4 | *low);
    i += 2;
  }
  if (!Unicode::isValid(decoded)) return std::nullopt;
  return decoded;
}

/// Characters of schemes, drives, streams, fragments and queries, the separator of other systems, controls.
bool isRefused(char byte) {
  return byte == ':' || byte == '\\' || byte == '#' || byte == '?' || static_cast<unsigned char>(byte) < 0x20;
}

/// Removes the first non-empty piece between slashes from `path` and returns it. Empty if there is none.
std::string_view takePiece(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const std::string_view piece = path.substr(0, path.find('/'));
  path.remove_prefix(piece.size());
  return piece;
}

void appendFolder(std::string& path, std::string_view piece) {
  if (piece.empty()) return;
  if (!path.empty()) path += '/';
  path += piece;
}

void removeLastPiece(std::string& path) {
  const std::size_t slash = path.rfind('/');
  path.resize(slash == std::string::npos ? 0 : slash);
}

std::optional<std::string> baseDirectory(std::string_view relationshipPart) {
  std::string path;
  while (!relationshipPart.empty())
    appendFolder(path, takePiece(relationshipPart));
  removeLastPiece(path);
  if (path != "_rels" && !path.ends_with("/_rels")) return std::nullopt;
  removeLastPiece(path);
  return path;
}

}  // namespace

OOXML::TargetResolver::TargetResolver(std::string_view relationshipPart)
    : base_(baseDirectory(relationshipPart)) {}

std::string OOXML::TargetResolver::resolve(std::string_view target) const {
  // Decoded before any check: %2F and %2E have the effect of "/" and ".".
  const std::optional<std::string> decoded = percentDecoded(target);
  if (!decoded || std::any_of(decoded->begin(), decoded->end(), isRefused)) {
    throw DocumentError::unsafeContent(RefusalDetail::relationshipURI);
  }
  if (!base_) throw DocumentError::invalidArchive("relationship location");

  std::string path;
  std::string_view rest = *decoded;
  if (!rest.starts_with('/')) path = *base_;
  while (!rest.empty()) {
    const std::string_view piece = takePiece(rest);
    if (piece == "..") {
      if (path.empty()) throw DocumentError::unsafeContent(RefusalDetail::relationshipTraversal);
      removeLastPiece(path);
    } else if (piece != ".") {
      appendFolder(path, piece);
    }
  }
  if (!BoundedZIP::safeName(path)) throw DocumentError::unsafeContent(RefusalDetail::relationshipPath);
  return path;
}

std::string OOXML::resolve(std::string_view target, std::string_view relationshipPart) {
  return TargetResolver(relationshipPart).resolve(target);
}

std::string OOXML::relationshipsPart(std::string_view part) {
  const std::size_t name = part.rfind('/') + 1;  // npos + 1 is 0: a part in no folder
  std::string path(part.substr(0, name));
  return path.append("_rels/").append(part.substr(name)).append(".rels");
}

std::string_view OOXML::relationshipType(std::string_view uri) {
  constexpr std::string_view starts[] = {
      "http://schemas.openxmlformats.org/officeDocument/2006/relationships/",
      "http://purl.oclc.org/ooxml/officeDocument/relationships/",
      "http://schemas.microsoft.com/office/2006/relationships/",
  };
  for (const std::string_view start : starts) {
    if (ASCII::takePrefix(uri, start)) return uri;
  }
  return {};
}

RelationshipTargets RelationshipTargets::read(XMLNode root) {
  RelationshipTargets targets;
  for (const XMLNode relationship : root.all("Relationship")) {
    const auto identifier = relationship.attribute("Id");
    const auto target = relationship.attribute("Target");
    if (identifier && target) targets.entries_.push_back({std::string(*identifier), std::string(*target)});
  }
  std::ranges::sort(targets.entries_, {}, &Entry::identifier);
  return targets;
}

std::optional<std::string_view> RelationshipTargets::find(std::string_view identifier) const {
  const auto found = std::ranges::lower_bound(entries_, identifier, {}, &Entry::identifier);
  if (found == entries_.end() || found->identifier != identifier) return std::nullopt;
  return found->target;
}

}  // namespace zelvo
