#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"

namespace zelvo::BoundedZIP {
namespace {

/// Characters with a special meaning on some systems: other separators, drives and streams, escapes, control
/// characters. In UTF-8 a byte below 0x80 is always the scalar itself.
bool isRefused(char byte) {
  return byte == '\\' || byte == ':' || byte == '%' || static_cast<unsigned char>(byte) < 0x20;
}

/// A relative piece of a path.
bool isStep(std::string_view piece) {
  return piece == "." || piece == "..";
}

}  // namespace

bool safeName(std::string_view name) {
  if (name.empty() || name.size() > maximumNameBytes || name.front() == '/') return false;
  std::size_t pieceStart = 0;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (isRefused(name[i])) return false;
    if (name[i] != '/') continue;
    const std::string_view piece = name.substr(pieceStart, i - pieceStart);
    if (piece.empty() || isStep(piece)) return false;
    pieceStart = i + 1;
  }
  return !isStep(name.substr(pieceStart));
}

}  // namespace zelvo::BoundedZIP
