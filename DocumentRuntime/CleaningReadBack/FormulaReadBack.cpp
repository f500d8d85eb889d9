#include "DocumentRuntime/CleaningReadBack/FormulaReadBack.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "Text/ASCII.hpp"

namespace zelvo::CleaningReadBack {
namespace {

constexpr std::string_view lostReference = "#REF!";

constexpr std::string_view errorTexts[] = {
    "#REF!",     "#N/A",      "#DIV/0!",   "#VALUE!",  "#NAME?",        "#NUM!",
    "#NULL!",    "#SPILL!",   "#CALC!",    "#FIELD!",  "#GETTING_DATA", "#BUSY!",
    "#BLOCKED!", "#CONNECT!", "#UNKNOWN!", "#PYTHON!", "#EXTERNAL!",
};

/// One end of a reference: a cell, a column (row 0) or a row (column 0).
struct End {
  std::int64_t column = 0;
  std::int64_t row = 0;
  bool hasFixedColumn = false;
  bool hasFixedRow = false;

  bool isCell() const { return column > 0 && row > 0; }
  bool isSameKind(const End& other) const {
    return (column > 0) == (other.column > 0) && (row > 0) == (other.row > 0);
  }
  bool isInSheet() const { return column <= CellAddress::maximumColumn && row <= CellAddress::maximumRow; }
  bool operator==(const End&) const = default;
};

bool isWord(char c) {
  constexpr std::string_view others = "_.$?\\";
  return ASCII::isDigit(c) || ASCII::isLetter(c) || others.find(c) != std::string_view::npos ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::optional<End> endOf(std::string_view word) {
  End end;
  const bool beginsWithSign = word.starts_with('$');
  std::size_t i = beginsWithSign ? 1 : 0;
  const std::size_t lettersStart = i;
  for (; i < word.size() && ASCII::isLetter(word[i]); ++i) {
    if (i - lettersStart == 3) return std::nullopt;
    end.column = end.column * 26 + ASCII::lowercased(word[i]) - 'a' + 1;
  }
  end.hasFixedColumn = end.column > 0 && beginsWithSign;
  end.hasFixedRow = end.column == 0 && beginsWithSign;
  if (end.column > 0 && i < word.size() && word[i] == '$') {
    end.hasFixedRow = true;
    ++i;
    if (i == word.size()) return std::nullopt;
  }
  const std::size_t digitsStart = i;
  for (; i < word.size() && ASCII::isDigit(word[i]); ++i) {
    if (i - digitsStart == 7) return std::nullopt;
    end.row = end.row * 10 + word[i] - '0';
  }
  const bool isRowMissing = digitsStart < word.size() && end.row == 0;
  const bool isEmpty = end.column == 0 && end.row == 0;
  if (i < word.size() || isRowMissing || isEmpty || !end.isInSheet()) return std::nullopt;
  return end;
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
  /// Compares the next token of the master with the next of the copy.
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

  /// A sheet prefix with the reference that follows it, or the brackets of a structured reference.
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

  /// The word at the front, which may be a reference.
  bool reference() {
    const std::size_t end = wordEnd(0);
    if (end == 0) return true;
    if (ASCII::isDigit(at(0))) {
      // A number, unless it is whole rows; an exponent may have a sign.
      if (at(end) != ':' || !endOf(master_.substr(0, end))) return same(end);
    }
    if (at(end) == '(' || at(end) == '[') return same(end);
    const auto first = endOf(master_.substr(0, end));
    if (!first) return same(end);
    const std::size_t second = at(end) == ':' ? wordEnd(end + 1) : end;
    const auto last = second > end + 1 && at(second) != '(' && at(second) != '[' && at(second) != '!'
                          ? endOf(master_.substr(end + 1, second - end - 1))
                          : std::nullopt;
    if (last && first->isSameKind(*last)) return moved(*first, last, second);
    return first->isCell() ? moved(*first, std::nullopt, end) : same(end);
  }

  bool moved(End first, std::optional<End> last, std::size_t length) {
    move(first);
    if (last) move(*last);
    master_.remove_prefix(length);
    if (isLost(first) || (last && isLost(*last))) return take(lostReference);
    return takeEnd(first) && (!last || (take(":") && takeEnd(*last)));
  }

  void move(End& end) const {
    if (end.column > 0 && !end.hasFixedColumn)
      end.column = orLost(end.column + columns_, CellAddress::maximumColumn);
    if (end.row > 0 && !end.hasFixedRow) end.row = orLost(end.row + rows_, CellAddress::maximumRow);
  }
  static std::int64_t orLost(std::int64_t number, std::int64_t limit) {
    return number < 1 || number > limit ? -1 : number;
  }
  static bool isLost(const End& end) { return end.column < 0 || end.row < 0; }

  bool take(std::string_view expected) {
    if (!copy_.starts_with(expected)) return false;
    copy_.remove_prefix(expected.size());
    return true;
  }
  bool takeEnd(const End& expected) {
    const auto end =
        static_cast<std::size_t>(std::find_if_not(copy_.begin(), copy_.end(), isWord) - copy_.begin());
    const bool isExpected = endOf(copy_.substr(0, end)) == expected;
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
