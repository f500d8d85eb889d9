#include "DocumentRuntime/Cleaning/StringCleaner.hpp"

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/SharedStrings.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

/// Whether an item's texts, without phonetic runs, exceed the strict reader's limit on characters.
bool isTooLong(XMLNode item) {
  std::string text;
  for (const XMLNode child : item.children()) {
    if (child.name() == "t") text += child.content();
    if (child.name() != "r") continue;
    for (const XMLNode inner : child.all("t"))
      text += inner.content();
  }
  return Unicode::exceeds(text, SharedStrings::maximumCharacters);
}

}  // namespace

void writeSharedStrings(XMLNode root, Findings& findings, PartWriter& writer) {
  const NamespaceScope scope(root);
  const OOXML::Namespace main = mainNamespace(scope, rule(Tag::strings).name, "the shared strings");
  std::size_t count = 0;
  const auto place = [&] { return "shared string " + std::to_string(count); };
  eachChild(scope, Tag::strings, main, findings, place, [&](const NamespaceScope& item, Tag tag) {
    if (count == SharedStrings::maximumItems)
      throw DocumentError::resourceLimit("more than 50,000 shared strings");
    ++count;
    const std::size_t before = writer.size();
    writer.start(tag);
    writeString(item, tag, main, findings, writer, place);
    writer.end(tag);
    // A character has at least one byte: short strings need no count.
    if (writer.size() - before > SharedStrings::maximumCharacters && isTooLong(item.element()))
      throw DocumentError::resourceLimit("more than 32,768 characters in " + place());
  });
}

}  // namespace zelvo::Cleaning
