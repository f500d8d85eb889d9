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

void readWord(const GeneratedPackage& package, TableReadBack& table) {
  if (!std::ranges::equal(package.parts(), wordParts, {}, &Part::name)) {
    throw DocumentError::validationFailed("unexpected Word package part");
  }
  const auto document = package.parsed(wordPartName);
  const XMLNode root = document.root();
  const auto body = root.child("body");
  if (root.name() != "document" || root.attribute("xmlns:w") != wordNamespace || !body ||
      body->descendants("tbl").size() != 1) {
    throw DocumentError::validationFailed("Word table");
  }
  const XMLContents contents(root);
  for (const XMLNode only : body->descendants("tbl")) {
    for (const XMLNode row : only.all("tr"))
      table.add({row, contents});
  }
}

}  // namespace zelvo
