#pragma once

#include "DocumentRuntime/Cleaning/ElementReader.hpp"
#include "DocumentRuntime/Cleaning/PartWriter.hpp"

namespace zelvo::Cleaning {

/// Writes the text, plain or in runs, of a shared or inline string with the tag `tag`. Phonetic runs are
/// dropped and counted. Throws what `eachChild` throws.
template <typename Place>
void writeString(const NamespaceScope& string, Tag tag, OOXML::Namespace main, Findings& findings,
                 PartWriter& writer, const Place& place) {
  std::string scratch;
  eachChild(string, tag, main, findings, place, [&](const NamespaceScope& child, Tag childTag) {
    if (childTag == Tag::run) {
      writer.start(Tag::run);
      writeString(child, Tag::run, main, findings, writer, place);
      writer.end(Tag::run);
      return;
    }
    eachChild(child, Tag::text, main, findings, place, [](const NamespaceScope&, Tag) {});
    writer.start(Tag::text);
    writer.attribute(Attribute::space, "preserve");
    writer.text(child.element().content(scratch));
    writer.end(Tag::text);
  });
}

/// Writes the shared strings part. Every item keeps its index. Throws `DocumentError` resourceLimit if a
/// limit of the strict reader on items is exceeded, and what `writeString` throws.
void writeSharedStrings(XMLNode root, Findings& findings, PartWriter& writer);

}  // namespace zelvo::Cleaning
