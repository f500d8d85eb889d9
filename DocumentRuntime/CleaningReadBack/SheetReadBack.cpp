#include "DocumentRuntime/CleaningReadBack/SheetReadBack.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/CleaningReadBack/BookReadBack.hpp"
#include "DocumentRuntime/CleaningReadBack/FormulaReadBack.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::CleaningReadBack {
namespace {

/// The area of a reference. Returns nullopt if it is absent, or invalid and was therefore dropped.
std::optional<CellRange> areaOf(std::optional<std::string_view> reference) {
  if (!reference || !Unicode::isASCII(*reference)) return std::nullopt;
  try {
    return CellRange::parse(*reference);
  } catch (const DocumentError&) {
    return std::nullopt;
  }
}

std::vector<bool> hiddenColumns(const Element& worksheet) {
  std::vector<bool> hidden(CellAddress::maximumColumn + 1);
  for (const XMLNode list : named(worksheet, "cols")) {
    for (const XMLNode column : named(Element(worksheet, list), "col")) {
      const auto first = xmlInteger(column.attribute("min"));
      const auto last = xmlInteger(column.attribute("max"));
      if (!xmlFlag(column.attribute("hidden")) || !first || !last) continue;
      for (auto i = std::max<std::int64_t>(*first, 1); i <= std::min(*last, CellAddress::maximumColumn); ++i)
        hidden[static_cast<std::size_t>(i)] = true;
    }
  }
  return hidden;
}

std::vector<std::optional<CellRange>> merges(const Element& worksheet) {
  std::vector<std::optional<CellRange>> areas;
  for (const XMLNode list : named(worksheet, "mergeCells")) {
    for (const XMLNode merge : named(Element(worksheet, list), "mergeCell")) {
      if (const auto reference = merge.attribute("ref")) areas.push_back(areaOf(reference));
    }
  }
  return areas;
}

/// A cell's element, and its children that hold a value.
struct Cell {
  explicit Cell(const Element& cell) : node(cell.element()) {
    for (const XMLNode child : node.children()) {
      const Element part(cell, child);
      if (isMain(part, "f")) formula = child;
      if (isMain(part, "v")) value = child;
      if (!isMain(part, "is")) continue;
      inlineText = stringText(part);
      hasOnlyPhoneticText = inlineText->empty() && child.hasContent();
    }
  }

  bool hasContent() const {
    return formula || (value && value->hasContent()) || (inlineText && !inlineText->empty()) ||
           hasOnlyPhoneticText;
  }
  std::string_view type() const {
    const std::string_view written = node.attribute("t").value_or("n");
    return written.empty() ? "n" : written;
  }

  XMLNode node;
  std::optional<XMLNode> formula;
  std::optional<XMLNode> value;
  std::optional<std::string> inlineText;
  bool hasOnlyPhoneticText = false;
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
    CellAddress at;
    std::string text;
  };

  static std::string name(const CellAddress& address) {
    return "in row " + std::to_string(address.row) + ", column " + std::to_string(address.column);
  }

  bool rows(const Element& sourceData, const Element& resultData) {
    for (const XMLNode row : named(sourceData, "row")) {
      at_ = {0, xmlInteger(row.attribute("r")).value_or(at_.row + 1)};
      if (!cells(Element(sourceData, row), resultData)) return false;
    }
    return true;
  }

  bool cells(const Element& row, const Element& resultData) {
    const bool isHidden = xmlFlag(row.element().attribute("hidden"));
    std::vector<Cell> expected;
    std::vector<CellAddress> positions;
    for (const XMLNode child : row.element().children()) {
      const Element scope(row, child);
      if (!isMain(scope, "c")) continue;
      const auto address = child.attribute("r");
      at_ = address ? CellAddress::parse(*address) : CellAddress{at_.column + 1, at_.row};
      Cell cell(scope);
      if (!cell.hasContent()) continue;
      expected.push_back(std::move(cell));
      positions.push_back(at_);
    }
    if (expected.empty() && !isHidden) return true;
    if (nextRow_ == resultRows_.size()) return false;
    const Element written(resultData, resultRows_[nextRow_++]);
    const auto writtenCells = named(written, "c");
    if (xmlInteger(written.element().attribute("r")) != at_.row ||
        xmlFlag(written.element().attribute("hidden")) != isHidden || writtenCells.size() != expected.size())
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
    if (CellAddress::parse(written.node.attribute("r").value_or("")) != at_ ||
        written.type() != expected.type() || written.node.attribute("s") != expected.node.attribute("s") ||
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
    const auto index = xmlInteger(expected.attribute("si"));
    const auto master = index ? masters_.find(*index) : masters_.end();
    if (!text.empty()) {
      if (index && (master == masters_.end() || expected.attribute("ref")))
        masters_.insert_or_assign(*index, Master{at_, std::string(text)});
      return writtenText == text && writtenType == "normal";
    }
    if (master == masters_.end()) return writtenText.empty() && writtenType == "shared";
    const CellAddress& from = master->second.at;
    return writtenType == "normal" &&
           isMovedCopy(master->second.text, writtenText, at_.row - from.row, at_.column - from.column);
  }

  Element source_;
  Element result_;
  std::vector<XMLNode> resultRows_;
  std::size_t nextRow_ = 0;
  CellAddress at_{.column = 0, .row = 0};
  std::map<std::int64_t, Master> masters_;
};

}  // namespace

std::optional<std::string> compareSheets(XMLNode source, XMLNode result, bool keepsMerges) {
  return SheetComparison(source, result).run(keepsMerges);
}

}  // namespace zelvo::CleaningReadBack
