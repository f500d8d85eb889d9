#include "DocumentRuntime/PackageIO/BoundedXML.hpp"

#include <array>
#include <cstring>
#include <memory>
#include <new>
#include <optional>

#include <expat.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/DeclarationScan.hpp"
#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"
#include "System/HashSalt.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::OOXML {
namespace {

/// How much the parser is given at once. It copies what it is given, so that a slice should stay in the
/// processor's cache; and it scans an unfinished tag again with every slice, so that a tag of 16 MiB should
/// not take too many.
constexpr std::size_t sliceBytes = 524'288;

/// The events of one parse. The library is C: no exception may pass through it, so the first failure is kept
/// here, the parser stopped, and the failure thrown once the library has returned.
class Parse {
 public:
  explicit Parse(ByteView part) : part_(part), builder_(part.size()), parser_(XML_ParserCreate("UTF-8")) {
    if (!parser_) throw std::bad_alloc();
    XML_SetHashSalt(parser_.get(), static_cast<unsigned long>(hashSalt()));
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), elementStarted, elementEnded);
    XML_SetCharacterDataHandler(parser_.get(), charactersFound);
  }

  XMLTree run() {
    bool parsed = true;
    for (std::size_t position = 0; parsed;) {
      const std::size_t length = std::min(sliceBytes, part_.size() - position);
      const bool isLast = position + length == part_.size();
      // A slice is far below the range of int.
      parsed = XML_Parse(parser_.get(), textOf(part_).data() + position, static_cast<int>(length), isLast) ==
               XML_STATUS_OK;
      if (isLast) break;
      position += length;
    }
    if (outOfMemory_ || XML_GetErrorCode(parser_.get()) == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
    if (failure_) throw DocumentError(*failure_);
    if (!parsed) throw DocumentError::invalidArchive("malformed XML");
    return builder_.finish();
  }

 private:
  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  template <typename Event>
  static void guarded(void* self, const Event& event) noexcept {
    Parse& parse = *static_cast<Parse*>(self);
    // After a stop the library may still deliver the end of an element that it has begun.
    if (parse.outOfMemory_ || parse.failure_) return;
    try {
      event(parse.builder_);
      return;
    } catch (const DocumentError& error) {
      parse.failure_ = error;
    } catch (const std::bad_alloc&) {
      parse.outOfMemory_ = true;
    }
    XML_StopParser(parse.parser_.get(), XML_FALSE);
  }

  static void elementStarted(void* self, const XML_Char* name, const XML_Char** attributes) noexcept {
    guarded(self, [&](XMLTreeBuilder& builder) {
      std::size_t count = 0;
      while (attributes[2 * count] != nullptr)
        ++count;
      builder.start(name, count);
      for (std::size_t i = 0; i < count; ++i)
        builder.attribute(attributes[2 * i], attributes[2 * i + 1]);
    });
  }
  static void elementEnded(void* self, const XML_Char* /*name*/) noexcept {
    guarded(self, [](XMLTreeBuilder& builder) { builder.end(); });
  }
  static void charactersFound(void* self, const XML_Char* text, int length) noexcept {
    guarded(self, [&](XMLTreeBuilder& builder) {
      builder.characters({text, static_cast<std::size_t>(length)});
    });
  }

  ByteView part_;
  XMLTreeBuilder builder_;
  std::unique_ptr<XML_ParserStruct, Free> parser_;
  std::optional<DocumentError> failure_;
  bool outOfMemory_ = false;
};

}  // namespace

XMLTree xml(ByteView part) {
  const std::string_view text = textOf(part);
  if (part.size() > maximumXMLBytes || !Unicode::isValid(text)) {
    throw DocumentError::unsupported("XML encoding or size");
  }
  if (holdsDeclaration(text)) throw DocumentError::unsafeContent("XML DTD or entity declaration");
  // The parser takes text that holds NUL bytes for UTF-16, whatever encoding it has been told.
  if (text.find('\0') != std::string_view::npos) throw DocumentError::invalidArchive("malformed XML");
  return Parse(part).run();
}

void warmUpXML() {
  xml(bytesOf("<a b='c'>d</a>"));
}

}  // namespace zelvo::OOXML
