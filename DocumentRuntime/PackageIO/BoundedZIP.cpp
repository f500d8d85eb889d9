#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"

#include <algorithm>

namespace zelvo::BoundedZIP {
namespace {

/// Characters that mean something else to some system: other separators, drives and streams, escapes, control
/// characters. In UTF-8 a byte below 0x80 is always the scalar itself.
bool isRefused(char byte) {
  return byte == '\\' || byte == ':' || byte == '%' || static_cast<unsigned char>(byte) < 0x20;
}

}  // namespace

bool safeName(std::string_view name) {
  if (name.empty() || name.size() > maximumNameBytes) return false;
  if (name.starts_with('/')) return false;
  if (std::any_of(name.begin(), name.end(), isRefused)) return false;
  for (;;) {
    const std::size_t slash = name.find('/');
    const std::string_view piece = name.substr(0, slash);
    if (piece == "." || piece == "..") return false;
    if (slash == std::string_view::npos) return true;
    if (piece.empty()) return false;
    name.remove_prefix(slash + 1);
  }
}

}  // namespace zelvo::BoundedZIP
