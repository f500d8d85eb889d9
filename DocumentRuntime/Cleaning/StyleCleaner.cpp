#include "DocumentRuntime/Cleaning/StyleCleaner.hpp"

#include <map>
#include <utility>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/CellStyles.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

constexpr std::int64_t firstCustomID = 164;

/// The number formats of the cell styles, by id.
class StyleFormats {
 public:
  /// Adds a format that the part defines.
  void define(std::int64_t id, std::string_view code) {
    Definition& definition = definitions_.try_emplace(id, Definition{.code = code}).first->second;
    definition.isAmbiguous = definition.isAmbiguous || definition.code != code;
  }
  /// Adds a format that the part defines without a code.
  void defineWithoutCode(std::int64_t id) { definitions_[id].isAmbiguous = true; }

  /// The code of a format that a style uses. Returns nullopt if the part does not define that id.
  std::optional<std::string_view> code(std::int64_t id) const {
    const auto found = definitions_.find(id);
    if (found == definitions_.end()) return std::nullopt;
    const Definition& definition = found->second;
    if (definition.isAmbiguous)
      throw DocumentError::invalidArchive("number format " + std::to_string(id) + " in the styles");
    if (Unicode::exceeds(definition.code, CellStyles::maximumCodeCharacters)) {
      throw DocumentError::resourceLimit("more than 256 characters in number format " + std::to_string(id));
    }
    return definition.code;
  }
  /// Marks a format to be written, if the part defines it.
  void use(std::int64_t id) {
    const auto found = definitions_.find(id);
    // Checked once: thousands of styles may share a long code.
    if (found != definitions_.end() && !found->second.isUsed) found->second.isUsed = code(id).has_value();
  }

  /// Adds a format with this code under an unused id. Returns the id.
  std::int64_t add(std::string_view code) {
    std::int64_t id = firstCustomID;
    while (definitions_.contains(id))
      ++id;
    definitions_.emplace(id, Definition{.code = code, .isUsed = true});
    return id;
  }

  void write(PartWriter& writer) const {
    bool isStarted = false;
    for (const auto& [id, definition] : definitions_) {
      if (!definition.isUsed) continue;
      if (!std::exchange(isStarted, true)) writer.start(Tag::numberFormats);
      writer.start(Tag::numberFormat);
      writer.attribute(Attribute::formatID, id);
      writer.attribute(Attribute::formatCode, definition.code);
      writer.end(Tag::numberFormat);
    }
    if (isStarted) writer.end(Tag::numberFormats);
  }

 private:
  struct Definition {
    std::string_view code;
    bool isAmbiguous = false;
    bool isUsed = false;
  };

  std::map<std::int64_t, Definition> definitions_;
};

void readDefinitions(const NamespaceScope& formats, OOXML::Namespace main, Findings& findings,
                     StyleFormats& into) {
  eachChild(
      formats, Tag::numberFormats, main, findings, [] { return "the styles"; },
      [&](const NamespaceScope& format, Tag tag) {
        const KeptAttributes attributes(format, tag, findings);
        const auto id = xmlInteger(attributes[Attribute::formatID]);
        if (!id) return;
        if (const auto code = attributes[Attribute::formatCode]) {
          into.define(*id, *code);
        } else {
          into.defineWithoutCode(*id);
        }
      });
}

/// The format id of every cell style; nullopt for a style without one.
using StyleIDs = std::vector<std::optional<std::int64_t>>;

StyleIDs readStyles(const NamespaceScope& styles, OOXML::Namespace main, Findings& findings) {
  StyleIDs ids;
  const auto place = [&] { return "cell style " + std::to_string(ids.size()); };
  eachChild(styles, Tag::cellFormats, main, findings, place, [&](const NamespaceScope& style, Tag tag) {
    eachChild(style, tag, main, findings, place, [](const NamespaceScope&, Tag) {});
    ids.push_back(xmlInteger(KeptAttributes(style, tag, findings)[Attribute::formatID]));
  });
  return ids;
}

/// Replaces the format ids of styles by those of plain formats.
class Replacement {
 public:
  Replacement(StyleFormats& formats, PlainFormats& replaced) : formats_(formats), replaced_(replaced) {}

  void replace(std::optional<std::int64_t>& style) {
    if (!style) {
      replaced_.addStyle(std::nullopt);
      return;
    }
    const auto [known, isNew] = decisions_.try_emplace(*style);
    if (isNew) known->second = decide(*style);
    replaced_.addStyle(known->second.format);
    style = known->second.id;
  }

 private:
  struct Decision {
    std::int64_t id = 0;
    std::optional<std::size_t> format;  ///< in `replaced_`
  };

  Decision decide(std::int64_t id) {
    auto code = formats_.code(id);
    if (!code) code = DocumentNumberFormat::builtin(id);
    const auto plain = code ? plainCode(*code) : plainCodeOfBuiltin(id);
    if (!plain) {
      formats_.use(id);
      return {.id = id};
    }
    return {
        .id = idOf(*plain),
        .format = replaced_.addFormat(code ? std::string(*code) : "built-in format " + std::to_string(id))};
  }

  std::int64_t idOf(std::string_view plain) {
    const auto [known, isNew] = ids_.try_emplace(plain);
    if (isNew) known->second = formats_.add(plain);
    return known->second;
  }

  StyleFormats& formats_;
  PlainFormats& replaced_;
  std::map<std::int64_t, Decision> decisions_;
  std::map<std::string_view, std::int64_t> ids_;
};

/// Writes a list of one empty element.
void writeOne(PartWriter& writer, Tag list, Tag item) {
  writer.start(list);
  writer.start(item);
  writer.end(item);
  writer.end(list);
}

void writeFill(PartWriter& writer, std::string_view pattern) {
  writer.start(Tag::fill);
  writer.start(Tag::patternFill);
  writer.attribute(Attribute::pattern, pattern);
  writer.end(Tag::patternFill);
  writer.end(Tag::fill);
}

void writeAppearance(PartWriter& writer) {
  writeOne(writer, Tag::fonts, Tag::font);
  writer.start(Tag::fills);
  writeFill(writer, "none");
  writeFill(writer, "gray125");
  writer.end(Tag::fills);
  writeOne(writer, Tag::borders, Tag::border);
  writeOne(writer, Tag::cellStyleFormats, Tag::format);
}

}  // namespace

void writeStyles(XMLNode root, Findings& findings, PartWriter& writer, bool plainFormats,
                 PlainFormats& replaced) {
  const NamespaceScope scope(root);
  const OOXML::Namespace main = mainNamespace(scope, rule(Tag::styleSheet).name, "the styles");
  StyleFormats formats;
  std::optional<StyleIDs> styles;
  eachChild(
      scope, Tag::styleSheet, main, findings, [] { return "the styles"; },
      [&](const NamespaceScope& child, Tag tag) {
        if (tag == Tag::numberFormats) readDefinitions(child, main, findings, formats);
        if (tag == Tag::cellFormats) styles = readStyles(child, main, findings);
      });
  if (styles) {
    Replacement replacement(formats, replaced);
    for (auto& style : *styles) {
      if (plainFormats) {
        replacement.replace(style);
      } else if (style) {
        formats.use(*style);
      }
    }
  }

  writer.begin(Tag::styleSheet, "the styles");
  formats.write(writer);
  writeAppearance(writer);
  if (!styles) return;
  writer.start(Tag::cellFormats);
  for (const auto& style : *styles) {
    writer.start(Tag::format);
    if (style) writer.attribute(Attribute::formatID, *style);
    if (style && *style != 0) writer.attribute(Attribute::applyNumberFormat, "1");
    writer.end(Tag::format);
  }
  writer.end(Tag::cellFormats);
}

}  // namespace zelvo::Cleaning
