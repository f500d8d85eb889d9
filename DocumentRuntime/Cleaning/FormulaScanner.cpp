#include "DocumentRuntime/Cleaning/FormulaScanner.hpp"

#include <algorithm>
#include <array>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "Text/ASCII.hpp"

namespace zelvo::Cleaning {
namespace {

using Kind = FormulaToken::Kind;

constexpr std::size_t maximumColumnLetters = 3;
constexpr std::size_t maximumRowDigits = 7;

constexpr std::array<std::string_view, 17> errorLiterals = {
    "#NULL!",    "#DIV/0!",       "#VALUE!",  "#REF!",     "#NAME?",     "#NUM!",
    "#N/A",      "#GETTING_DATA", "#SPILL!",  "#CALC!",    "#FIELD!",    "#BUSY!",
    "#BLOCKED!", "#CONNECT!",     "#PYTHON!", "#UNKNOWN!", "#EXTERNAL!",
};

using ASCII::isDigit;
using ASCII::isLetter;

/// Whether a name or a reference may contain the character. True for every byte outside ASCII.
bool isWordCharacter(char c) {
  return isLetter(c) || isDigit(c) || c == '_' || c == '.' || c == '\\' || c == '?' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

char at(std::string_view text, std::size_t position) {
  return position < text.size() ? text[position] : '\0';
}

template <typename Is>
std::size_t runLength(std::string_view text, std::size_t start, Is is) {
  std::size_t end = start;
  while (end < text.size() && is(text[end]))
    ++end;
  return end - start;
}

/// The length of the quoted text at the front, including its quotes and doubled quotes inside it.
std::size_t quotedLength(std::string_view text, char quote) {
  std::size_t end = 1;
  while (end < text.size()) {
    if (text[end++] != quote) continue;
    if (at(text, end) != quote) return end;
    ++end;
  }
  return end;
}

/// The length of the group of brackets at the front. An apostrophe escapes the next character.
std::size_t bracketsLength(std::string_view text) {
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\'') {
      ++i;
    } else if (text[i] == '[') {
      ++depth;
    } else if (text[i] == ']' && --depth == 0) {
      return i + 1;
    }
  }
  return text.size();
}

/// The position after "S!" or "S1:S3!" if one of them begins at `start`, otherwise 0.
std::size_t sheetLength(std::string_view text, std::size_t start) {
  std::size_t end = start + runLength(text, start, isWordCharacter);
  if (at(text, end) == ':') {
    const std::size_t second = runLength(text, end + 1, isWordCharacter);
    if (second == 0) return 0;
    end += 1 + second;
  }
  return at(text, end) == '!' ? end + 1 : 0;
}

std::size_t errorLength(std::string_view text) {
  const auto literal = std::find_if(errorLiterals.begin(), errorLiterals.end(),
                                    [&](std::string_view error) { return text.starts_with(error); });
  return literal == errorLiterals.end() ? 1 : literal->size();
}

/// The length of a number at the front: digits, a point, an exponent.
std::size_t numberLength(std::string_view text) {
  std::size_t end = runLength(text, 0, isDigit);
  if (at(text, end) == '.') end += 1 + runLength(text, end + 1, isDigit);
  if (at(text, end) != 'E' && at(text, end) != 'e') return end;
  const std::size_t sign = at(text, end + 1) == '+' || at(text, end + 1) == '-' ? 1 : 0;
  const std::size_t exponent = runLength(text, end + 1 + sign, isDigit);
  return exponent == 0 ? end : end + 1 + sign + exponent;
}

/// The cell, column ("$AB") or row ("$12") that a whole word refers to. Returns nullopt for a name.
std::optional<ReferenceEnd> endOf(std::string_view word) {
  ReferenceEnd end;
  std::size_t position = at(word, 0) == '$' ? 1 : 0;
  const std::size_t letters = runLength(word, position, isLetter);
  if (letters > 0) {
    end.isColumnAbsolute = position == 1;
    if (letters > maximumColumnLetters) return std::nullopt;
    for (const char letter : word.substr(position, letters))
      end.column = end.column * 26 + ((letter | 0x20) - 'a' + 1);
    position += letters;
    if (end.column > CellAddress::maximumColumn) return std::nullopt;
    if (position == word.size()) return end;
    end.isRowAbsolute = word[position] == '$';
    if (end.isRowAbsolute) ++position;
  } else {
    end.isRowAbsolute = position == 1;
  }
  const std::size_t digits = word.size() - position;
  if (digits == 0 || digits > maximumRowDigits || runLength(word, position, isDigit) != digits)
    return std::nullopt;
  for (const char digit : word.substr(position))
    end.row = end.row * 10 + (digit - '0');
  if (end.row < 1 || end.row > CellAddress::maximumRow) return std::nullopt;
  return end;
}

bool isTruthValue(std::string_view word) {
  const auto equals = [&](std::string_view value) {
    return std::equal(word.begin(), word.end(), value.begin(), value.end(),
                      [](char a, char b) { return (a & ~0x20) == b; });
  };
  return equals("TRUE") || equals("FALSE");
}

}  // namespace

std::optional<FormulaToken> FormulaScanner::next() {
  if (rest_.empty()) return std::nullopt;
  const bool followsSheet = followsSheet_;
  followsSheet_ = false;
  const char c = rest_.front();
  switch (c) {
    case '"':
      return take(Kind::other, quotedLength(rest_, '"'));
    case '\'': {
      const std::size_t length = quotedLength(rest_, '\'');
      return at(rest_, length) == '!' ? take(Kind::sheet, length + 1) : take(Kind::other, length);
    }
    case '[': {
      const std::size_t length = bracketsLength(rest_);
      const std::size_t sheet = sheetLength(rest_, length);
      return sheet > 0 ? take(Kind::sheet, sheet) : take(Kind::structured, length);
    }
    case '#':
      return take(Kind::other, errorLength(rest_));
    case '|': {
      const std::size_t topic = at(rest_, 1) == '\'' ? 1 + quotedLength(rest_.substr(1), '\'')
                                                     : 1 + runLength(rest_, 1, isWordCharacter);
      if (at(rest_, topic) != '!') return take(Kind::exchange, topic);
      const std::string_view item = rest_.substr(topic + 1);
      return take(
          Kind::exchange,
          topic + 1 + (at(item, 0) == '\'' ? quotedLength(item, '\'') : runLength(item, 0, isWordCharacter)));
    }
    default:
      if (isDigit(c) || (c == '.' && isDigit(at(rest_, 1)))) return digits();
      if (isWordCharacter(c)) return word(followsSheet);
      return take(Kind::other, 1);
  }
}

FormulaToken FormulaScanner::take(Kind kind, std::size_t size) {
  const FormulaToken token{.kind = kind, .text = rest_.substr(0, size)};
  rest_.remove_prefix(size);
  followsSheet_ = kind == Kind::sheet;
  return token;
}

/// A number with the word characters after it, or whole rows: "1:3".
FormulaToken FormulaScanner::digits() {
  const std::size_t length = runLength(rest_, 0, isDigit);
  if (at(rest_, length) == ':') {
    if (const auto rows = reference(length)) return *rows;
  }
  const std::size_t number = numberLength(rest_);
  return take(Kind::other, number + runLength(rest_, number, isWordCharacter));
}

FormulaToken FormulaScanner::word(bool followsSheet) {
  // A sheet may have the name of a cell: "S1:S3!A1".
  if (!followsSheet && rest_.front() != '$') {
    if (const std::size_t sheet = sheetLength(rest_, 0); sheet > 0) return take(Kind::sheet, sheet);
  }
  const std::size_t length = runLength(rest_, 0, isWordCharacter);
  const char following = at(rest_, length);
  if (following == '(') return take(Kind::function, length);
  if (following == '[') return take(Kind::structured, length);
  if (const auto found = reference(length)) return *found;
  return take(isTruthValue(rest_.substr(0, length)) ? Kind::other : Kind::name, length);
}

/// The reference whose first end is the word of `size` bytes at the front. Returns nullopt if it is not a
/// reference. Both ends must be of one kind. Whole columns and rows need two ends.
std::optional<FormulaToken> FormulaScanner::reference(std::size_t size) {
  const auto first = endOf(rest_.substr(0, size));
  if (!first) return std::nullopt;
  const bool isCell = first->column > 0 && first->row > 0;
  if (at(rest_, size) == ':') {
    const std::size_t second = runLength(rest_, size + 1, isWordCharacter);
    const char following = at(rest_, size + 1 + second);
    const auto last = endOf(rest_.substr(size + 1, second));
    if (last && following != '(' && following != '!' && following != '[' &&
        (first->column > 0) == (last->column > 0) && (first->row > 0) == (last->row > 0)) {
      FormulaToken token = take(Kind::reference, size + 1 + second);
      token.first = *first;
      token.last = last;
      return token;
    }
  }
  if (!isCell) return std::nullopt;
  FormulaToken token = take(Kind::reference, size);
  token.first = *first;
  return token;
}

}  // namespace zelvo::Cleaning
