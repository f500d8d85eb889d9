#include "DocumentRuntime/CleaningReadBack/SheetReadBack.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/CleaningReadBack/BookReadBack.hpp"
#include "DocumentRuntime/CleaningReadBack/FormulaReadBack.hpp"

namespace zelvo::CleaningReadBack {
namespace {

constexpr std::int64_t lastColumn = 16'384;

struct Position {
  std::int64_t column = 0;
  std::int64_t row = 0;

  bool operator==(const Position&) const = default;
};

/// The position that an address names, or the part of one that it names: 0 for what is missing.
Position positionOf(std::string_view address) {
  Position position;
  for (const char c : address) {
    if (c >= '0' && c <= '9') position.row = position.row * 10 + (c - '0');
    if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z')
      position.column = position.column * 26 + ((c | 0x20) - 'a' + 1);
  }
  return position;
}

/// The corners of an area; of a single cell, twice the same.
std::array<Position, 2> areaOf(std::optional<std::string_view> reference) {
  const std::string_view text = reference.value_or("");
  const std::size_t colon = std::min(text.find(':'), text.size());
  const Position first = positionOf(text.substr(0, colon));
  return {first, colon == text.size() ? first : positionOf(text.substr(colon + 1))};
}

std::vector<bool> hiddenColumns(const Element& worksheet) {
  std::vector<bool> hidden(lastColumn + 1);
  for (const XMLNode list : named(worksheet, "cols")) {
    for (const XMLNode column : named(Element(worksheet, list), "col")) {
      const auto first = numberOf(column.attribute("min"));
      const auto last = numberOf(column.attribute("max"));
      if (!isTrue(column.attribute("hidden")) || !first || !last) continue;
      for (auto i = std::max<std::int64_t>(*first, 1); i <= std::min(*last, lastColumn); ++i)
        hidden[static_cast<std::size_t>(i)] = true;
    }
  }
  return hidden;
}

std::vector<std::array<Position, 2>> merges(const Element& worksheet) {
  std::vector<std::array<Position, 2>> areas;
  for (const XMLNode list : named(worksheet, "mergeCells")) {
    for (const XMLNode merge : named(Element(worksheet, list), "mergeCell")) {
      if (const auto reference = merge.attribute("ref")) areas.push_back(areaOf(reference));
    }
  }
  return areas;
}

/// A cell's element, and those of its children that hold something.
struct Cell {
  explicit Cell(const Element& cell) : node(cell.element()) {
    for (const XMLNode child : node.children()) {
      const Element part(cell, child);
      if (isMain(part, "f")) formula = child;
      if (isMain(part, "v")) value = child;
      if (!isMain(part, "is")) continue;
      inlineText.emplace();
      for (const XMLNode piece : child.children()) {
        const Element pieceScope(part, piece);
        if (isMain(pieceScope, "t")) *inlineText += piece.content();
        if (!isMain(pieceScope, "r")) continue;
        for (const XMLNode text : named(pieceScope, "t"))
          *inlineText += text.content();
      }
      hasReadingAidOnly = inlineText->empty() && child.hasContent();
    }
  }

  bool hasContent() const {
    return formula || (value && value->hasContent()) || (inlineText && !inlineText->empty()) ||
           hasReadingAidOnly;
  }
  std::string_view type() const {
    const std::string_view written = node.attribute("t").value_or("n");
    return written.empty() ? "n" : written;
  }

  XMLNode node;
  std::optional<XMLNode> formula;
  std::optional<XMLNode> value;
  std::optional<std::string> inlineText;
  bool hasReadingAidOnly = false;
};

class SheetComparison {
 public:
  SheetComparison(XMLNode source, XMLNode result) : source_(source), result_(result) {}

  std::optional<std::string> run(bool keepsMerges) {
    if (hiddenColumns(source_) != hiddenColumns(result_)) return "hidden columns";
    if (merges(result_) != (keepsMerges ? merges(source_) : decltype(merges(source_))()))
      return "merged areas";
    if (named(source_, "autoFilter").empty() != named(result_, "autoFilter").empty()) return "filter";
    const auto data = named(source_, "sheetData");
    const auto written = named(result_, "sheetData");
    if (written.size() != 1) return "sheet data";
    const Element resultData(result_, written.front());
    resultRows_ = named(resultData, "row");
    if (!data.empty() && !rows(Element(source_, data.front()), resultData)) return "cell " + name(at_);
    return nextRow_ == resultRows_.size() ? std::nullopt : std::optional<std::string>("number of rows");
  }

 private:
  struct Master {
    Position at;
    std::string text;
  };

  static std::string name(const Position& position) {
    return "in row " + std::to_string(position.row) + ", column " + std::to_string(position.column);
  }

  bool rows(const Element& sourceData, const Element& resultData) {
    for (const XMLNode row : named(sourceData, "row")) {
      at_ = {0, numberOf(row.attribute("r")).value_or(at_.row + 1)};
      if (!cells(Element(sourceData, row), resultData)) return false;
    }
    return true;
  }

  bool cells(const Element& row, const Element& resultData) {
    const bool isHidden = isTrue(row.element().attribute("hidden"));
    std::vector<Cell> expected;
    std::vector<Position> positions;
    for (const XMLNode child : row.element().children()) {
      const Element scope(row, child);
      if (!isMain(scope, "c")) continue;
      const auto address = child.attribute("r");
      at_ = address ? positionOf(*address) : Position{at_.column + 1, at_.row};
      Cell cell(scope);
      if (!cell.hasContent()) continue;
      expected.push_back(std::move(cell));
      positions.push_back(at_);
    }
    if (expected.empty() && !isHidden) return true;
    if (nextRow_ == resultRows_.size()) return false;
    const Element written(resultData, resultRows_[nextRow_++]);
    const auto writtenCells = named(written, "c");
    if (numberOf(written.element().attribute("r")) != at_.row ||
        isTrue(written.element().attribute("hidden")) != isHidden || writtenCells.size() != expected.size())
      return false;
    for (std::size_t i = 0; i < expected.size(); ++i) {
      at_ = positions[i];
      if (!cell(expected[i], Cell(Element(written, writtenCells[i])))) return false;
    }
    return true;
  }

  bool cell(const Cell& expected, const Cell& written) {
    std::string scratch;
    std::string writtenScratch;
    if (positionOf(written.node.attribute("r").value_or("")) != at_ || written.type() != expected.type() ||
        written.node.attribute("s") != expected.node.attribute("s") ||
        written.value.has_value() != expected.value.has_value() ||
        written.inlineText != expected.inlineText ||
        written.formula.has_value() != expected.formula.has_value())
      return false;
    if (expected.value && expected.value->content(scratch) != written.value->content(writtenScratch))
      return false;
    return !expected.formula || formula(*expected.formula, *written.formula);
  }

  bool formula(XMLNode expected, XMLNode written) {
    std::string scratch;
    std::string writtenScratch;
    const std::string_view text = expected.content(scratch);
    const std::string_view writtenText = written.content(writtenScratch);
    const std::string_view type = expected.attribute("t").value_or("normal");
    const std::string_view writtenType = written.attribute("t").value_or("normal");
    if (type == "shared") return sharedFormula(expected, text, writtenText, writtenType);
    return text == writtenText && type == writtenType &&
           (type == "normal" || areaOf(expected.attribute("ref")) == areaOf(written.attribute("ref")));
  }

  bool sharedFormula(XMLNode expected, std::string_view text, std::string_view writtenText,
                     std::string_view writtenType) {
    const auto index = numberOf(expected.attribute("si"));
    const auto master = index ? masters_.find(*index) : masters_.end();
    if (!text.empty()) {
      if (index && (master == masters_.end() || expected.attribute("ref")))
        masters_.insert_or_assign(*index, Master{at_, std::string(text)});
      return writtenText == text && writtenType == "normal";
    }
    if (master == masters_.end()) return writtenText.empty() && writtenType == "shared";
    const Position& from = master->second.at;
    return writtenType == "normal" &&
           isMovedCopy(master->second.text, writtenText, at_.row - from.row, at_.column - from.column);
  }

  Element source_;
  Element result_;
  std::vector<XMLNode> resultRows_;
  std::size_t nextRow_ = 0;
  Position at_;
  std::map<std::int64_t, Master> masters_;
};

}  // namespace

std::optional<std::string> compareSheets(XMLNode source, XMLNode result, bool keepsMerges) {
  return SheetComparison(source, result).run(keepsMerges);
}

}  // namespace zelvo::CleaningReadBack
