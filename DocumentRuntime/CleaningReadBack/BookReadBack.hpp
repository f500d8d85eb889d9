#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/ArchiveTrees.hpp"
#include "DocumentRuntime/PackageIO/XMLNamespaces.hpp"

namespace zelvo::CleaningReadBack {

using Element = OOXML::NamespaceScope;

/// Whether the element has that local name and is in the main namespace, Transitional or Strict.
bool isMain(const Element& element, std::string_view local);
/// The children with that local name in the main namespace.
std::vector<XMLNode> named(const Element& parent, std::string_view local);
/// The text of a shared or inline string, in document order, without phonetic runs.
std::string stringText(const Element& string);

struct BookSheet {
  std::string name;
  bool isHidden = false;
  bool isWorksheet = false;
  const OOXML::ArchiveTrees::Entry* part = nullptr;  ///< null if it is not a worksheet
};

/// The contents of the workbook part and its relationships.
struct Book {
  /// Throws `DocumentError` validationFailed if a part is missing.
  explicit Book(OOXML::ArchiveTrees& trees);

  bool uses1904Dates = false;
  std::vector<BookSheet> sheets;
  const OOXML::ArchiveTrees::Entry* strings = nullptr;
  const OOXML::ArchiveTrees::Entry* styles = nullptr;
};

}  // namespace zelvo::CleaningReadBack
