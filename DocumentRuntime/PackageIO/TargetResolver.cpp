#include "DocumentRuntime/PackageIO/TargetResolver.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::OOXML {
namespace {

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
bool isRefused(char byte) {
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
    appendPiece(path, takePiece(relationshipPart));
  removeLastPiece(path);
  if (path != "_rels" && !path.ends_with("/_rels")) return std::nullopt;
  removeLastPiece(path);
  return path;
}

}  // namespace

TargetResolver::TargetResolver(std::string_view relationshipPart) : base_(baseDirectory(relationshipPart)) {}

std::string TargetResolver::resolve(std::string_view target) const {
  // Decoded before anything is looked at: %2F and %2E climb like the characters that they stand for.
  const std::optional<std::string> decoded = percentDecoded(target);
  if (!decoded || std::any_of(decoded->begin(), decoded->end(), isRefused)) {
    throw DocumentError::unsafeContent("relationship URI");
  }
  if (!base_) throw DocumentError::invalidArchive("relationship location");

  std::string path;
  std::string_view rest = *decoded;
  if (!rest.starts_with('/')) path = *base_;
  while (!rest.empty()) {
    const std::string_view piece = takePiece(rest);
    if (piece == "..") {
      if (path.empty()) throw DocumentError::unsafeContent("relationship traversal");
      removeLastPiece(path);
    } else if (piece != ".") {
      appendPiece(path, piece);
    }
  }
  if (!BoundedZIP::safeName(path)) throw DocumentError::unsafeContent("relationship path");
  return path;
}

}  // namespace zelvo::OOXML
