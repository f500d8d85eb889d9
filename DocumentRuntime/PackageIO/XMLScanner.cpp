#include "DocumentRuntime/PackageIO/XMLScanner.hpp"

#include <algorithm>
#include <cstring>

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

/// A block of a long text. The compilers translate operations on it for any processor.
constexpr std::size_t blockBytes = ByteBuffer::spareBytes;
using Block __attribute__((vector_size(blockBytes))) = unsigned char;

bool isPlainBlock(const char* at) {
  Block bytes;
  std::memcpy(&bytes, at, blockBytes);
  const auto special = (bytes < 0x20) | (bytes == '<') | (bytes == '&') | (bytes == ']') |
                       (bytes == static_cast<unsigned char>(noncharacterStart));
  std::uint64_t halves[2];
  static_assert(sizeof halves == sizeof special);
  std::memcpy(halves, &special, sizeof halves);
  return (halves[0] | halves[1]) == 0;
}

/// Moves over the bytes of character data that are copied unchanged. Most texts are shorter than a block.
const char* endOfPlainText(const char* at) {
  while (true) {
    for (const char* const end = at + blockBytes; at != end; ++at) {
      if (!isOf(plainInText, *at)) return at;
    }
    while (isPlainBlock(at))
      at += blockBytes;
  }
}

}  // namespace

void XMLScanner::run() {
  take(byteOrderMark);
  if (rest().size() > 5 && rest().starts_with("<?xml") && isOf(whiteSpace, rest()[5])) declaration();
  miscellaneous();
  root();
  miscellaneous();
  require(at_ == end_);
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
  const char quote = *at_;
  require(quote == '"' || quote == '\'');
  ++at_;
  require(isValid(upTo({&quote, 1})));
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
  require(*at_ == '<');
  startTag();
  while (depth_ > 0) {
    characterData();
    markup();
  }
}

void XMLScanner::markup() {
  require(*at_ == '<');
  if (at_[1] == '/') {
    endTag();
  } else if (at_[1] == '?') {
    instruction();
  } else if (at_[1] != '!') {
    startTag();
  } else if (rest().starts_with("<!--")) {
    comment();
  } else {
    section();
  }
}

void XMLScanner::startTag() {
  ++at_;
  const XMLName elementName = name();
  attributeCount_ = 0;
  bool spaced = skipSpace();
  while (*at_ != '>' && *at_ != '/') {
    require(spaced);
    attribute();
    spaced = skipSpace();
  }
  const bool isEmpty = take('/');
  require(take('>'));

  builder_.start(elementName, attributeCount_);  // refuses too many attributes and levels
  if (isEmpty) {
    builder_.end();
  } else {
    openNames_[depth_++] = elementName;
  }
}

void XMLScanner::attribute() {
  const XMLName attributeName = name();
  skipSpace();
  require(take('='));
  skipSpace();
  const char quote = *at_;
  require(quote == '"' || quote == '\'');
  ++at_;
  const std::string_view plain = run(plainInValue);
  if (!take(quote)) {
    decodedValue(attributeName.text(), plain, quote);
  } else if (attributeCount_ < maximumXMLAttributes) {
    builder_.attribute(attributeName.text(), plain);
  }
  checkIsNew(attributeName);
  ++attributeCount_;
}

/// Compares the name with those of the tag that are kept, and keeps it.
void XMLScanner::checkIsNew(const XMLName& attributeName) {
  const std::size_t kept = std::min(attributeCount_, attributeNames_.size());
  for (std::size_t i = 0; i < kept; ++i)
    require(!(attributeNames_[i] == attributeName));
  if (kept < attributeNames_.size()) attributeNames_[kept] = attributeName;
}

/// Reads the rest of a value that is not plain.
void XMLScanner::decodedValue(std::string_view attributeName, std::string_view plain, char quote) {
  decodedValue_ = plain;
  while (!take(quote)) {
    decodeInValue();
    decodedValue_ += run(plainInValue);
  }
  if (attributeCount_ < maximumXMLAttributes) builder_.decodedAttribute(attributeName, decodedValue_);
}

/// Decodes one character that is not copied unchanged: a reference, white space that becomes one space, the
/// other quote, or the first byte of a scalar that begins with 0xEF. Never "<" or a control character.
void XMLScanner::decodeInValue() {
  const char c = *at_;
  if (c == '&') {
    decodedValue_ += reference();
    return;
  }
  require(isOf(whiteSpace, c) || c == '"' || c == '\'' ||
          (c == noncharacterStart && !startsWithNoncharacter(rest())));
  ++at_;
  if (c == '\r') take('\n');
  decodedValue_ += isOf(whiteSpace, c) ? ' ' : c;
}

void XMLScanner::endTag() {
  at_ += 2;
  const XMLName& open = openNames_[depth_ - 1];
  require(rest().size() >= open.size() && XMLName::at(at_, open.size()) == open);
  at_ += open.size();
  skipSpace();
  require(take('>'));
  --depth_;
  builder_.end();
}

void XMLScanner::characterData() {
  const char* start = at_;
  while (true) {
    at_ = endOfPlainText(at_);
    if (*at_ == noncharacterStart) {
      require(!startsWithNoncharacter(rest()));
      at_ += noncharacterBytes;
      continue;
    }
    if (*at_ == ']') {
      require(!rest().starts_with("]]>"));
      ++at_;
      continue;
    }
    builder_.characters({start, static_cast<std::size_t>(at_ - start)});
    if (*at_ == '<' || *at_ == '\0') return;
    if (*at_ == '&') {
      builder_.decodedCharacters(reference());
    } else {
      require(take('\r'));  // any other byte is a control character
      if (*at_ != '\n') builder_.decodedCharacters("\n");
    }
    start = at_;
  }
}

void XMLScanner::section() {
  require(take("<![CDATA["));
  std::string_view content = upTo("]]>");
  checkCharacters(content);
  for (std::size_t end = content.find('\r'); end != std::string_view::npos; end = content.find('\r')) {
    builder_.characters(content.substr(0, end));
    content.remove_prefix(end + 1);
    if (!content.starts_with('\n')) builder_.decodedCharacters("\n");
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
  require(!isReservedTarget(name().text()));
  const bool spaced = skipSpace();
  const std::string_view content = upTo("?>");
  require(spaced || content.empty());
  checkCharacters(content);
}

XMLName XMLScanner::name() {
  const char* const start = at_;
  if (isOf(nameStart, *at_)) run(nameRest);
  if (static_cast<unsigned char>(*at_) >= 0x80) restOfName(start);
  require(at_ != start);
  return XMLName::at(start, static_cast<std::size_t>(at_ - start));
}

/// Continues a name, or starts it, with a scalar outside ASCII.
void XMLScanner::restOfName(const char* start) {
  while (static_cast<unsigned char>(*at_) >= 0x80) {
    std::size_t length = 0;
    if (!isNameScalar(Unicode::nextScalar(rest(), length), at_ == start)) return;
    at_ += length;
    run(nameRest);
  }
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
  const char* const start = at_;
  for (; *at_ != ';'; ++at_) {
    const std::size_t digit = ASCII::hexDigits.find(ASCII::lowercased(*at_));
    require(digit < base);
    scalar = scalar * base + static_cast<char32_t>(digit);
    require(scalar <= 0x10FFFF);  // after every digit, so that nothing overflows
  }
  require(at_ != start && isAllowed(scalar));
  ++at_;
  return scalar;
}

std::string_view XMLScanner::upTo(std::string_view end) {
  const std::size_t length = rest().find(end);
  require(length != std::string_view::npos);
  const std::string_view before = rest().substr(0, length);
  at_ += length + end.size();
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
  at_ += expected.size();
  return true;
}

void XMLScanner::malformed() {
  throw DocumentError::invalidArchive("malformed XML");
}

}  // namespace zelvo::OOXML
