#include "DocumentRuntime/Validation/TableReadBack.hpp"

#include <algorithm>
#include <string>
#include <string_view>

#include "DocumentRuntime/Validation/DocumentInputRules.hpp"

namespace zelvo {
namespace {

// The input rules have the same limits. Kept separate on purpose: the document may come from elsewhere.
constexpr std::size_t maximumTableRows = 201;  ///< the header included
constexpr std::size_t maximumTableColumns = 8;

/// Iterates over the text of a cell, one `t` element after the other.
class CellText {
 public:
  CellText(XMLNode cell, const XMLContents& contents)
      : pieces_(cell.descendants("t")), next_(pieces_.begin()), contents_(contents) {}
  CellText(const CellText&) = delete;
  CellText& operator=(const CellText&) = delete;
  ~CellText() = default;

  /// The rest of the current piece; empty only at the end of the text.
  std::string_view front() {
    while (piece_.empty() && next_ != pieces_.end()) {
      piece_ = contents_.of(*next_);
      ++next_;
    }
    return piece_;
  }
  void skip(std::size_t bytes) { piece_.remove_prefix(bytes); }

 private:
  XMLElements pieces_;
  XMLElements::Iterator next_;
  const XMLContents& contents_;
  std::string_view piece_;
};

bool isText(XMLNode cell, const XMLContents& contents, std::string_view expected) {
  CellText text(cell, contents);
  for (std::string_view piece = text.front(); !piece.empty(); piece = text.front()) {
    if (!expected.starts_with(piece)) return false;
    expected.remove_prefix(piece.size());
    text.skip(piece.size());
  }
  return expected.empty();
}

/// Compares ranges of two buffers and remembers the last equal ones. Cells with the same nesting of texts
/// repeat parts of these ranges at every level; each byte is then compared only once.
class RangeComparison {
 public:
  /// Compares texts of equal length. Every `a` must be in one buffer, every `b` in another.
  bool areEqual(std::string_view a, std::string_view b) {
    if (isKnown(a, b)) return true;
    if (a != b) return false;
    if (a.data() == a_ + length_ && b.data() == b_ + length_) {
      length_ += a.size();
    } else {
      a_ = a.data();
      b_ = b.data();
      length_ = a.size();
    }
    return true;
  }

 private:
  bool isKnown(std::string_view a, std::string_view b) const {
    if (length_ == 0 || a.data() < a_ || b.data() < b_) return false;
    const auto offset = static_cast<std::size_t>(a.data() - a_);
    return offset == static_cast<std::size_t>(b.data() - b_) && offset + a.size() <= length_;
  }

  const char* a_ = nullptr;
  const char* b_ = nullptr;
  std::size_t length_ = 0;
};

bool showSameText(XMLNode a, const XMLContents& aContents, XMLNode b, const XMLContents& bContents,
                  RangeComparison& comparison) {
  CellText aText(a, aContents);
  CellText bText(b, bContents);
  while (true) {
    const std::size_t length = std::min(aText.front().size(), bText.front().size());
    if (length == 0) return aText.front().empty() && bText.front().empty();
    if (!comparison.areEqual(aText.front().substr(0, length), bText.front().substr(0, length))) return false;
    aText.skip(length);
    bText.skip(length);
  }
}

XMLElements cellsOf(const TableRow& row) {
  return row.element.all("tc");
}

}  // namespace

bool showSameTexts(const TableRow& a, const TableRow& b) {
  const XMLElements aCells = cellsOf(a);
  const XMLElements bCells = cellsOf(b);
  RangeComparison comparison;
  return std::equal(aCells.begin(), aCells.end(), bCells.begin(), bCells.end(), [&](XMLNode x, XMLNode y) {
    return showSameText(x, a.contents, y, b.contents, comparison);
  });
}

TableReadBack::TableReadBack(const SourceTable* expected) : expected_(expected) {
  // An error of the expected table is thrown after an error of the document's dimensions, but only a valid
  // table can be compared.
  if (expected != nullptr) {
    try {
      DocumentInputRules::checkTable(*expected, "Validation");
    } catch (const DocumentError& error) {
      refusal_ = error;
    }
  }
  matches_ = expected != nullptr && !refusal_;
}

void TableReadBack::add(const TableRow& row) {
  const std::size_t count = cellsOf(row).size();
  if (rowCount_ == 0) columnCount_ = count;
  isRagged_ |= count != columnCount_;
  matches_ = matches_ && isExpected(row);
  ++rowCount_;
}

void TableReadBack::check() const {
  if (rowCount_ < 1 || rowCount_ > maximumTableRows || columnCount_ < 1 ||
      columnCount_ > maximumTableColumns || isRagged_) {
    throw DocumentError::validationFailed(RefusalDetail::tableDimensions);
  }
  if (expected_ == nullptr) return;
  if (refusal_) throw DocumentError(*refusal_);
  if (!matches_ || rowCount_ != expected_->rows.size() + 1) {
    throw DocumentError::validationFailed(RefusalDetail::tableDiffers);
  }
}

/// The expected table has passed the input rules: all of its rows have as many cells as it has titles.
bool TableReadBack::isExpected(const TableRow& row) const {
  if (rowCount_ > expected_->rows.size()) return false;
  const XMLElements cells = cellsOf(row);
  if (cells.size() != expected_->columns.size()) return false;
  std::size_t column = 0;
  for (const XMLNode cell : cells) {
    const std::string expected =
        rowCount_ == 0 ? expected_->columns[column] : expected_->rows[rowCount_ - 1][column].displayText();
    if (!isText(cell, row.contents, expected)) return false;
    ++column;
  }
  return true;
}

}  // namespace zelvo
