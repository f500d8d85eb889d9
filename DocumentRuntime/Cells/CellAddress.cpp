#include "DocumentRuntime/Cells/CellAddress.hpp"

#include <algorithm>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// Digits of the largest row. Longer row texts are refused, also with leading zeros.
constexpr int maximumRowDigits = 7;

DocumentError outOfBounds() {
  return DocumentError::invalidSelection(RefusalDetail::addressBounds);
}

/// Parses a text byte by byte: no byte of a scalar outside ASCII is an ASCII letter or digit.
CellAddress parseASCII(std::string_view text) {
  std::int64_t column = 0;
  std::int64_t row = 0;
  int rowDigits = 0;
  bool lettersEnded = false;
  for (const char character : text) {
    if (character == '$') continue;
    if (!lettersEnded && ASCII::isLetter(character)) {
      column = column * 26 + (ASCII::lowercased(character) - 'a' + 1);
      if (column > CellAddress::maximumColumn) throw outOfBounds();
      continue;
    }
    lettersEnded = true;
    if (character < '0' || character > '9') throw DocumentError::invalidSelection(RefusalDetail::address);
    row = row * 10 + (character - '0');
    if (++rowDigits > maximumRowDigits) throw outOfBounds();
  }
  if (column == 0 || row < 1 || row > CellAddress::maximumRow) throw outOfBounds();
  return {column, row};
}

}  // namespace

CellAddress CellAddress::parse(std::string_view text) {
  if (Unicode::isASCII(text)) return parseASCII(text);
  // Full Unicode upper case: a few letters outside ASCII, such as the dotless i, map to A to Z.
  return parseASCII(Unicode::uppercased(text));
}

std::string CellAddress::name() const {
  return columnLetters(column) + std::to_string(row);
}

std::strong_ordering CellAddress::operator<=>(const CellAddress& other) const {
  if (const auto rows = row <=> other.row; std::is_neq(rows)) return rows;
  return column <=> other.column;
}

std::string columnLetters(std::int64_t column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26)
    letters += static_cast<char>('A' + (column - 1) % 26);
  std::reverse(letters.begin(), letters.end());
  return letters;
}

CellRange CellRange::parse(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    const CellAddress only = CellAddress::parse(text);
    return {only, only};
  }
  if (text.find(':', colon + 1) != std::string_view::npos) {
    throw DocumentError::invalidSelection(RefusalDetail::oneRange);
  }
  const CellRange range = {CellAddress::parse(text.substr(0, colon)),
                           CellAddress::parse(text.substr(colon + 1))};
  if (range.last.row < range.first.row || range.last.column < range.first.column) {
    throw DocumentError::invalidSelection(RefusalDetail::reversedRange);
  }
  return range;
}

std::string CellRange::name() const {
  return first.name() + ":" + last.name();
}

bool CellRange::contains(const CellAddress& address) const {
  return address.row >= first.row && address.row <= last.row &&  //
         address.column >= first.column && address.column <= last.column;
}

bool CellRange::intersects(const CellRange& other) const {
  return first.row <= other.last.row && other.first.row <= last.row &&  //
         first.column <= other.last.column && other.first.column <= last.column;
}

}  // namespace zelvo
