#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"
#include "DocumentRuntime/PackageIO/XMLNamespaces.hpp"

namespace zelvo::CleaningReadBack {

using Element = OOXML::NamespaceScope;

/// Whether the element is of that local name in the main namespace, Transitional or Strict.
bool isMain(const Element& element, std::string_view local);
/// The children of that local name in the main namespace.
std::vector<XMLNode> named(const Element& parent, std::string_view local);

/// A whole number; none for any other text.
std::optional<std::int64_t> numberOf(std::optional<std::string_view> text);
bool isTrue(std::optional<std::string_view> text);

struct BookSheet {
  std::string name;
  bool isHidden = false;
  bool isWorksheet = false;
  const OOXML::ArchiveTrees::Entry* part = nullptr;  ///< null only if it is no worksheet
};

/// What a workbook's own part and its relationships say.
struct Book {
  /// Throws `DocumentError` validationFailed where a part is missing.
  explicit Book(OOXML::ArchiveTrees& trees);

  bool uses1904Dates = false;
  std::vector<BookSheet> sheets;
  const OOXML::ArchiveTrees::Entry* strings = nullptr;
  const OOXML::ArchiveTrees::Entry* styles = nullptr;
};

}  // namespace zelvo::CleaningReadBack
