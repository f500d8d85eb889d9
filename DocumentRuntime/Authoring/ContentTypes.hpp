#pragma once

#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo::DocumentAuthor {

/// A part and its content type; both are words of the program and are written unescaped.
struct ContentTypeOverride {
  std::string_view partName;  ///< without the leading slash
  std::string_view contentType;
};

/// The content types part: defaults for relationships, XML and, on request, embedded workbooks, then the
/// overrides in order.
ByteBuffer contentTypes(const std::vector<ContentTypeOverride>& overrides, bool embeddedWorkbook);

}  // namespace zelvo::DocumentAuthor
