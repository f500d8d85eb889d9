#include "DocumentRuntime/Validation/WordReadBack.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo {
namespace {

constexpr std::string_view wordNamespace = "http://schemas.openxmlformats.org/wordprocessingml/2006/main";

/// Sorted.
constexpr std::array<std::string_view, 3> wordParts = {"[Content_Types].xml", "_rels/.rels", wordPartName};

}  // namespace

TableTexts readWord(const GeneratedPackage& package) {
  if (!std::ranges::equal(package.parts(), wordParts, {}, &Part::name)) {
    throw DocumentError::validationFailed("unexpected Word package part");
  }
  const auto document = package.parsed(wordPartName);
  const auto body = document.root().child("body");
  if (document.root().name() != "document" || document.root().attribute("xmlns:w") != wordNamespace ||
      !body || body->descendants("tbl").size() != 1) {
    throw DocumentError::validationFailed("Word table");
  }
  TableTexts rows;
  for (const XMLNode table : body->descendants("tbl"))
    appendTableTexts(rows, table);
  return rows;
}

}  // namespace zelvo
