#include "DocumentRuntime/PackageIO/XMLScanner.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/XMLCharacters.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::OOXML {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

using ASCII::isDigit;
using ASCII::isLetter;

bool isVersion(std::string_view value) {
  return value.size() > 2 && value.starts_with("1.") && std::ranges::all_of(value.substr(2), isDigit);
}

/// Any name: the text is known to be valid UTF-8.
bool isEncodingName(std::string_view value) {
  return !value.empty() && isLetter(value.front()) && std::ranges::all_of(value, [](char c) {
    return isLetter(c) || isDigit(c) || c == '.' || c == '_' || c == '-';
  });
}

bool isYesOrNo(std::string_view value) {
  return value == "yes" || value == "no";
}

/// Names that XML reserves, in any case.
bool isReservedTarget(std::string_view target) {
  return std::ranges::equal(target, std::string_view("xml"), {}, [](char c) { return ASCII::lowercased(c); });
}

/// Only speeds up the comparison of the names of one tag.
std::uint32_t hashOf(std::string_view name) {
  std::uint32_t hash = 0;
  for (const char c : name)
    hash = hash * 31 + static_cast<unsigned char>(c);
  return hash;
}

}  // namespace

void XMLScanner::run() {
  take(byteOrderMark);
  if (rest().size() > 5 && rest().starts_with("<?xml") && isOf(whiteSpace, rest()[5])) declaration();
  miscellaneous();
  root();
  miscellaneous();
  require(isAtEnd());
}

void XMLScanner::declaration() {
  take("<?xml");
  require(skipSpace() && rest().starts_with("version"));
  declaredValue("version", isVersion);
  bool spaced = skipSpace();
  if (rest().starts_with("encoding")) {
    require(spaced);
    declaredValue("encoding", isEncodingName);
    spaced = skipSpace();
  }
  if (rest().starts_with("standalone")) {
    require(spaced);
    declaredValue("standalone", isYesOrNo);
    skipSpace();
  }
  require(take("?>"));
}

void XMLScanner::declaredValue(std::string_view name, bool (*isValid)(std::string_view)) {
  take(name);
  skipSpace();
  require(take('='));
  skipSpace();
  const std::string_view quote = rest().substr(0, 1);
  require(quote == "\"" || quote == "'");
  ++position_;
  require(isValid(upTo(quote)));
}

/// Comments, instructions and white space around the root.
void XMLScanner::miscellaneous() {
  while (true) {
    skipSpace();
    if (rest().starts_with("<!--")) {
      comment();
    } else if (rest().starts_with("<?")) {
      instruction();
    } else {
      return;
    }
  }
}

void XMLScanner::root() {
  require(peek() == '<');
  startTag();
  while (depth_ > 0) {
    characterData();
    markup();
  }
}

void XMLScanner::markup() {
  require(peek() == '<');
  const std::string_view following = rest().substr(1, 8);
  if (following.starts_with('/')) {
    endTag();
  } else if (following.starts_with('?')) {
    instruction();
  } else if (!following.starts_with('!')) {
    startTag();
  } else if (following.starts_with("!--")) {
    comment();
  } else {
    section();
  }
}

void XMLScanner::startTag() {
  ++position_;
  const std::string_view elementName = name();
  attributeCount_ = 0;
  decodedValues_.clear();
  bool spaced = skipSpace();
  while (peek() != '>' && peek() != '/') {
    require(spaced);
    attribute();
    spaced = skipSpace();
  }
  const bool isEmpty = take('/');
  require(take('>'));

  builder_.start(elementName, attributeCount_);  // refuses too many attributes and levels
  for (std::size_t i = 0; i < attributeCount_; ++i) {
    const Attribute& kept = attributes_[i];
    const std::string_view decoded =
        std::string_view(decodedValues_).substr(kept.decodedStart, kept.decodedLength);
    builder_.attribute(kept.name, kept.decodedLength > 0 ? decoded : kept.value);
  }
  if (isEmpty) {
    builder_.end();
  } else {
    openNames_[depth_++] = elementName;
  }
}

void XMLScanner::attribute() {
  const std::string_view attributeName = name();
  skipSpace();
  require(take('='));
  skipSpace();
  const char quote = peek();
  require(quote == '"' || quote == '\'');
  ++position_;
  Attribute found = attributeValue(quote);
  found.name = attributeName;
  found.nameHash = hashOf(attributeName);

  const std::size_t kept = std::min(attributeCount_, attributes_.size());
  for (std::size_t i = 0; i < kept; ++i) {
    require(attributes_[i].nameHash != found.nameHash || attributes_[i].name != attributeName);
  }
  if (attributeCount_ < attributes_.size()) attributes_[attributeCount_] = found;
  ++attributeCount_;
}

XMLScanner::Attribute XMLScanner::attributeValue(char quote) {
  const std::string_view plain = run(plainInValue);
  if (take(quote)) return {.name = {}, .value = plain, .decodedStart = 0, .decodedLength = 0, .nameHash = 0};

  const std::size_t decodedStart = decodedValues_.size();
  decodedValues_ += plain;
  while (!take(quote)) {
    decodeInValue();
    decodedValues_ += run(plainInValue);
  }
  return {.name = {},
          .value = {},
          .decodedStart = decodedStart,
          .decodedLength = decodedValues_.size() - decodedStart,
          .nameHash = 0};
}

/// Decodes one character that is not copied unchanged: a reference, white space that becomes one space, the
/// other quote, or the first byte of a scalar that begins with 0xEF. Never "<" or a control character.
void XMLScanner::decodeInValue() {
  const char c = peek();
  if (c == '&') {
    decodedValues_ += reference();
    return;
  }
  require(isOf(whiteSpace, c) || c == '"' || c == '\'' ||
          (c == noncharacterStart && !startsWithNoncharacter(rest())));
  ++position_;
  if (c == '\r') take("\n");
  decodedValues_ += isOf(whiteSpace, c) ? ' ' : c;
}

void XMLScanner::endTag() {
  position_ += 2;
  require(take(openNames_[depth_ - 1]));
  skipSpace();
  require(take('>'));
  --depth_;
  builder_.end();
}

void XMLScanner::characterData() {
  while (true) {
    const std::size_t start = position_;
    while (!isAtEnd() && isOf(plainInText, text_[position_]))
      ++position_;
    builder_.characters(text_.substr(start, position_ - start));
    switch (peek()) {
      case '<':
      case '\0':
        return;
      case '&':
        builder_.characters(reference());
        break;
      case '\r':
        ++position_;
        if (peek() != '\n') builder_.characters("\n");
        break;
      case ']':
        require(!rest().starts_with("]]>"));
        builder_.characters("]");
        ++position_;
        break;
      default:
        // A scalar that begins with 0xEF, three bytes long; anything else is a control character.
        require(peek() == noncharacterStart && !startsWithNoncharacter(rest()));
        builder_.characters(rest().substr(0, 3));
        position_ += 3;
    }
  }
}

void XMLScanner::section() {
  require(take("<![CDATA["));
  std::string_view content = upTo("]]>");
  checkCharacters(content);
  for (std::size_t end = content.find('\r'); end != std::string_view::npos; end = content.find('\r')) {
    builder_.characters(content.substr(0, end));
    content.remove_prefix(end + 1);
    if (!content.starts_with('\n')) builder_.characters("\n");
  }
  builder_.characters(content);
}

void XMLScanner::comment() {
  take("<!--");
  checkCharacters(upTo("--"));
  require(take('>'));
}

void XMLScanner::instruction() {
  take("<?");
  require(!isReservedTarget(name()));
  const bool spaced = skipSpace();
  const std::string_view content = upTo("?>");
  require(spaced || content.empty());
  checkCharacters(content);
}

std::string_view XMLScanner::name() {
  const std::size_t start = position_;
  require(isOf(nameStart, peek()) || static_cast<unsigned char>(peek()) >= 0x80);
  while (true) {
    if (position_ > start || isOf(nameStart, peek())) run(nameRest);
    if (static_cast<unsigned char>(peek()) < 0x80) break;
    std::size_t next = position_;
    if (!isNameScalar(Unicode::nextScalar(text_, next), position_ == start)) break;
    position_ = next;
  }
  require(position_ > start);
  return text_.substr(start, position_ - start);
}

bool XMLScanner::skipSpace() {
  return !run(whiteSpace).empty();
}

std::string_view XMLScanner::run(std::uint8_t classes) {
  const char* const start = text_.data() + position_;
  const char* const end = text_.data() + text_.size();
  const char* at = start;
  while (at != end && isOf(classes, *at))
    ++at;
  const auto length = static_cast<std::size_t>(at - start);
  position_ += length;
  return {start, length};
}

std::string_view XMLScanner::reference() {
  struct Predefined {
    std::string_view reference;
    std::string_view character;
  };
  constexpr Predefined predefined[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&amp;", "&"}, {"&apos;", "'"}, {"&quot;", "\""},
  };
  if (rest().starts_with("&#")) {
    decodedReference_.clear();
    Unicode::append(decodedReference_, characterReference());
    return decodedReference_;
  }
  for (const auto& [written, character] : predefined) {
    if (take(written)) return character;
  }
  malformed();  // without a document type no other entity is declared
}

char32_t XMLScanner::characterReference() {
  take("&#");
  const char32_t base = take("x") ? 16 : 10;
  char32_t scalar = 0;
  const std::size_t start = position_;
  for (; peek() != ';'; ++position_) {
    const char c = peek();
    const std::size_t digit = ASCII::hexDigits.find(ASCII::lowercased(c));
    require(digit < base);
    scalar = scalar * base + static_cast<char32_t>(digit);
    require(scalar <= 0x10FFFF);  // after every digit, so that nothing overflows
  }
  require(position_ > start && isAllowed(scalar));
  ++position_;
  return scalar;
}

std::string_view XMLScanner::upTo(std::string_view end) {
  const std::size_t found = text_.find(end, position_);
  require(found != std::string_view::npos);
  const std::string_view before = text_.substr(position_, found - position_);
  position_ = found + end.size();
  return before;
}

void XMLScanner::checkCharacters(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool isControl = static_cast<unsigned char>(c) < 0x20 && !isOf(whiteSpace, c);
    require(!isControl && !(c == noncharacterStart && startsWithNoncharacter(text.substr(i))));
  }
}

bool XMLScanner::take(std::string_view expected) {
  if (!rest().starts_with(expected)) return false;
  position_ += expected.size();
  return true;
}

void XMLScanner::malformed() {
  throw DocumentError::invalidArchive("malformed XML");
}

}  // namespace zelvo::OOXML
