#include "DocumentRuntime/CleaningReadBack/FormulaReadBack.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace zelvo::CleaningReadBack {
namespace {

constexpr std::int64_t lastColumn = 16'384;
constexpr std::int64_t lastRow = 1'048'576;
constexpr std::string_view lostReference = "#REF!";

constexpr std::string_view errorTexts[] = {
    "#REF!",     "#N/A",      "#DIV/0!",   "#VALUE!",  "#NAME?",        "#NUM!",
    "#NULL!",    "#SPILL!",   "#CALC!",    "#FIELD!",  "#GETTING_DATA", "#BUSY!",
    "#BLOCKED!", "#CONNECT!", "#UNKNOWN!", "#PYTHON!", "#EXTERNAL!",
};

/// A token of a formula that may be a reference or one end of it.
struct Place {
  std::int64_t column = 0;
  std::int64_t row = 0;
  bool hasFixedColumn = false;
  bool hasFixedRow = false;

  bool isCell() const { return column > 0 && row > 0; }
  bool isSameKind(const Place& other) const {
    return (column > 0) == (other.column > 0) && (row > 0) == (other.row > 0);
  }
  bool isInSheet() const { return column >= 0 && column <= lastColumn && row >= 0 && row <= lastRow; }
  bool operator==(const Place&) const = default;
};

bool isWord(char c) {
  constexpr std::string_view others = "_.$?\\";
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         others.find(c) != std::string_view::npos || static_cast<unsigned char>(c) >= 0x80;
}

std::optional<Place> placeOf(std::string_view word) {
  Place place;
  std::size_t i = 0;
  std::size_t signs = word.starts_with('$') ? 1 : 0;
  const bool beginsWithSign = signs == 1;
  i += signs;
  const std::size_t lettersStart = i;
  for (; i < word.size() && (word[i] | 0x20) >= 'a' && (word[i] | 0x20) <= 'z'; ++i) {
    if (i - lettersStart == 3) return std::nullopt;
    place.column = place.column * 26 + (word[i] | 0x20) - 'a' + 1;
  }
  place.hasFixedColumn = place.column > 0 && beginsWithSign;
  place.hasFixedRow = place.column == 0 && beginsWithSign;
  if (place.column > 0 && i < word.size() && word[i] == '$') {
    place.hasFixedRow = true;
    ++i;
    if (i == word.size()) return std::nullopt;
  }
  const std::size_t digitsStart = i;
  for (; i < word.size() && word[i] >= '0' && word[i] <= '9'; ++i) {
    if (i - digitsStart == 7) return std::nullopt;
    place.row = place.row * 10 + word[i] - '0';
  }
  const bool isRowMissing = digitsStart < word.size() && place.row == 0;
  if (i < word.size() || isRowMissing || place == Place{} || !place.isInSheet()) return std::nullopt;
  if (place.column == 0 && place.row == 0) return std::nullopt;
  return place;
}

class Comparison {
 public:
  Comparison(std::string_view master, std::string_view copy, std::int64_t rows, std::int64_t columns)
      : master_(master), copy_(copy), rows_(rows), columns_(columns) {}

  bool holds() {
    while (!master_.empty()) {
      if (!step()) return false;
    }
    return copy_.empty();
  }

 private:
  /// Compares the next piece of the master with the next of the copy.
  bool step() {
    const char c = master_.front();
    if (c == '"') return same(quoted('"', 0));
    if (c == '\'') return sheet(quoted('\'', 0));
    if (c == '[') return sheet(brackets());
    if (c == '#') return same(error());
    if (c == '|') return same(exchange());
    if (isWord(c)) return word();
    return same(1);
  }

  bool same(std::size_t length) {
    const bool isSame = copy_.substr(0, length) == master_.substr(0, length);
    master_.remove_prefix(length);
    copy_.remove_prefix(std::min(length, copy_.size()));
    return isSame;
  }

  char at(std::size_t i) const { return i < master_.size() ? master_[i] : '\0'; }

  std::size_t wordEnd(std::size_t i) const {
    while (isWord(at(i)))
      ++i;
    return i;
  }
  std::size_t quoted(char quote, std::size_t start) const {
    for (std::size_t i = start + 1; i < master_.size(); ++i) {
      if (master_[i] != quote) continue;
      if (at(i + 1) != quote) return i + 1;
      ++i;
    }
    return master_.size();
  }
  std::size_t brackets() const {
    int depth = 0;
    for (std::size_t i = 0; i < master_.size(); ++i) {
      if (master_[i] == '\'') {
        ++i;
        continue;
      }
      depth += master_[i] == '[' ? 1 : 0;
      depth -= master_[i] == ']' ? 1 : 0;
      if (depth == 0) return i + 1;
    }
    return master_.size();
  }
  std::size_t error() const {
    for (const std::string_view text : errorTexts) {
      if (master_.starts_with(text)) return text.size();
    }
    return 1;
  }
  std::size_t exchange() const {
    std::size_t end = at(1) == '\'' ? quoted('\'', 1) : wordEnd(1);
    if (at(end) != '!') return end;
    ++end;
    return at(end) == '\'' ? quoted('\'', end) : wordEnd(end);
  }

  /// What names a sheet, or a table's columns, and the first word behind the sheet.
  bool sheet(std::size_t length) {
    std::size_t end = length;
    if (master_.front() == '[') {
      end = wordEnd(end);
      const std::size_t second = at(end) == ':' ? wordEnd(end + 1) : end;
      if (second > end + 1) end = second;
    }
    if (at(end) != '!') return same(length);
    return same(end + 1) && reference();
  }

  bool word() {
    const std::size_t end = wordEnd(0);
    const std::size_t second = at(end) == ':' ? wordEnd(end + 1) : end;
    const bool isPrefix =
        master_.front() != '$' && (at(end) == '!' || (second > end + 1 && at(second) == '!'));
    if (!isPrefix) return reference();
    return same((at(end) == '!' ? end : second) + 1) && reference();
  }

  /// A word at the front that is a reference, or anything else.
  bool reference() {
    const std::size_t end = wordEnd(0);
    if (end == 0) return true;
    if (at(0) >= '0' && at(0) <= '9') {
      // A number, unless it is whole rows; an exponent may have a sign.
      if (at(end) != ':' || !placeOf(master_.substr(0, end))) return same(end);
    }
    if (at(end) == '(' || at(end) == '[') return same(end);
    const auto first = placeOf(master_.substr(0, end));
    if (!first) return same(end);
    const std::size_t second = at(end) == ':' ? wordEnd(end + 1) : end;
    const auto last = second > end + 1 && at(second) != '(' && at(second) != '[' && at(second) != '!'
                          ? placeOf(master_.substr(end + 1, second - end - 1))
                          : std::nullopt;
    if (last && first->isSameKind(*last)) return moved(*first, last, second);
    return first->isCell() ? moved(*first, std::nullopt, end) : same(end);
  }

  bool moved(Place first, std::optional<Place> last, std::size_t length) {
    move(first);
    if (last) move(*last);
    master_.remove_prefix(length);
    if (isLost(first) || (last && isLost(*last))) return take(lostReference);
    return takePlace(first) && (!last || (take(":") && takePlace(*last)));
  }

  void move(Place& place) const {
    if (place.column > 0 && !place.hasFixedColumn) place.column = orLost(place.column + columns_, lastColumn);
    if (place.row > 0 && !place.hasFixedRow) place.row = orLost(place.row + rows_, lastRow);
  }
  static std::int64_t orLost(std::int64_t number, std::int64_t limit) {
    return number < 1 || number > limit ? -1 : number;
  }
  static bool isLost(const Place& place) { return place.column < 0 || place.row < 0; }

  bool take(std::string_view expected) {
    if (!copy_.starts_with(expected)) return false;
    copy_.remove_prefix(expected.size());
    return true;
  }
  bool takePlace(const Place& expected) {
    const auto end =
        static_cast<std::size_t>(std::find_if_not(copy_.begin(), copy_.end(), isWord) - copy_.begin());
    const bool isExpected = placeOf(copy_.substr(0, end)) == expected;
    copy_.remove_prefix(end);
    return isExpected;
  }

  std::string_view master_;
  std::string_view copy_;
  std::int64_t rows_;
  std::int64_t columns_;
};

}  // namespace

bool isMovedCopy(std::string_view master, std::string_view copy, std::int64_t rows, std::int64_t columns) {
  return Comparison(master, copy, rows, columns).holds();
}

}  // namespace zelvo::CleaningReadBack
