#include "DocumentRuntime/Cleaning/WorksheetCleaner.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/Cleaning/CoveredCells.hpp"
#include "DocumentRuntime/Cleaning/FormulaTranslation.hpp"
#include "DocumentRuntime/Cleaning/StringCleaner.hpp"
#include "DocumentRuntime/Errors/Cancelled.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::Cleaning {
namespace {

/// Limit of a formula that is written out: the longest that spreadsheet programs accept.
constexpr std::size_t maximumFormulaCharacters = 8'192;

constexpr std::string_view whiteSpace = " \t\r\n";

bool hasSpaceAtAnEnd(std::string_view text) {
  return !text.empty() && (whiteSpace.find(text.front()) != std::string_view::npos ||
                           whiteSpace.find(text.back()) != std::string_view::npos);
}

void writeText(PartWriter& writer, std::string_view text) {
  if (hasSpaceAtAnEnd(text)) writer.attribute(Attribute::space, "preserve");
  writer.text(text);
}

std::string areaName(const CellRange& area) {
  return area.first == area.last ? area.first.name() : area.name();
}

/// The children of a cell.
struct CellParts {
  std::optional<XMLNode> formula;
  std::optional<XMLNode> value;
  std::optional<XMLNode> inlineString;
};

}  // namespace

template <typename Take>
void WorksheetCleaner::eachChild(const NamespaceScope& element, Tag tag, const Take& take) {
  Cleaning::eachChild(
      element, tag, main_, tools_.findings, [this] { return place(); }, take);
}

/// Refuses unknown elements at any depth, and counts dropped ones.
void WorksheetCleaner::checkChildren(const NamespaceScope& element, Tag tag) {
  eachChild(element, tag,
            [this](const NamespaceScope& child, Tag childTag) { checkChildren(child, childTag); });
}

std::string WorksheetCleaner::place() const {
  if (row_ == 0) return place_;
  const std::string position =
      column_ == 0 ? "row " + std::to_string(row_) : "cell " + CellAddress{column_, row_}.name();
  return position + " of " + place_;
}

void WorksheetCleaner::write(XMLNode root) {
  root_.emplace(root);
  main_ = mainNamespace(*root_, rule(Tag::worksheet).name, place_);
  tools_.writer.begin(Tag::worksheet, place_);

  std::vector<XMLNode> columnLists;
  std::optional<XMLNode> sheetData;
  std::optional<XMLNode> autoFilter;
  eachChild(*root_, Tag::worksheet, [&](const NamespaceScope& child, Tag tag) {
    if (tag == Tag::columns) columnLists.push_back(child.element());
    if (tag == Tag::sheetData) sheetData = child.element();
    if (tag == Tag::autoFilter) autoFilter = child.element();
    if (tag == Tag::mergeCells) readMerges(child);
  });

  writeColumns(columnLists);
  tools_.writer.start(Tag::sheetData);
  if (sheetData) writeRows(NamespaceScope(*root_, *sheetData));
  tools_.writer.end(Tag::sheetData);
  if (autoFilter) {
    const NamespaceScope filter(*root_, *autoFilter);
    checkChildren(filter, Tag::autoFilter);
    const auto area = KeptAttributes(filter, Tag::autoFilter, tools_.findings)[Attribute::reference];
    tools_.writer.start(Tag::autoFilter);
    if (area) tools_.writer.attribute(Attribute::reference, areaName(*areaOf(*area)));
    tools_.writer.end(Tag::autoFilter);
  }
  writeMerges();
}

void WorksheetCleaner::writeColumns(const std::vector<XMLNode>& lists) {
  bool isStarted = false;
  for (const XMLNode list : lists) {
    eachChild(NamespaceScope(*root_, list), Tag::columns,
              [&](const NamespaceScope& column, Tag) { writeColumn(column, isStarted); });
  }
  if (isStarted) tools_.writer.end(Tag::columns);
}

/// Writes columns that are hidden or have a width, clipped to the sheet. Readers ignore malformed and
/// reversed spans.
void WorksheetCleaner::writeColumn(const NamespaceScope& column, bool& isStarted) {
  const KeptAttributes attributes(column, Tag::column, tools_.findings);
  const auto first = xmlInteger(attributes[Attribute::minimum]);
  const auto last = xmlInteger(attributes[Attribute::maximum]);
  if (!first || !last || *first > *last || *first > CellAddress::maximumColumn || *last < 1) return;
  const auto width = attributes[Attribute::width];
  if (!width && !attributes.isSet(Attribute::hidden)) return;

  PartWriter& writer = tools_.writer;
  if (!std::exchange(isStarted, true)) writer.start(Tag::columns);
  writer.start(Tag::column);
  writer.attribute(Attribute::minimum, std::max<std::int64_t>(*first, 1));
  writer.attribute(Attribute::maximum, std::min(*last, CellAddress::maximumColumn));
  if (width) writer.attribute(Attribute::width, *width);
  if (attributes.isSet(Attribute::hidden)) writer.attribute(Attribute::hidden, "1");
  if (width && attributes.isSet(Attribute::customWidth)) writer.attribute(Attribute::customWidth, "1");
  writer.end(Tag::column);
}

void WorksheetCleaner::readMerges(const NamespaceScope& mergeCells) {
  eachChild(mergeCells, Tag::mergeCells, [&](const NamespaceScope& merge, Tag tag) {
    const KeptAttributes attributes(merge, tag, tools_.findings);
    if (attributes.refused()) refuseAttribute(*attributes.refused(), "a merged area of " + place_);
    if (const auto area = attributes[Attribute::reference]) merges_.push_back(*areaOf(*area));
  });
}

void WorksheetCleaner::writeRows(const NamespaceScope& sheetData) {
  eachChild(sheetData, Tag::sheetData, [&](const NamespaceScope& row, Tag) {
    throwIfCancelled(tools_.stop);
    writeRow(row);
  });
  row_ = 0;
}

void WorksheetCleaner::writeRow(const NamespaceScope& row) {
  const KeptAttributes attributes(row, Tag::row, tools_.findings);
  if (attributes.refused())
    refuseAttribute(*attributes.refused(), "the row after row " + std::to_string(row_) + " of " + place_);
  const auto number = xmlInteger(attributes[Attribute::position]);
  if (!number) tools_.findings.add(CleaningKind::impliedPositions);
  row_ = number.value_or(row_ + 1);
  column_ = 0;
  if (row_ > CellAddress::maximumRow) throw DocumentError::invalidArchive("rows past the end of " + place_);
  if (!identities_.isNewRow(row_)) throw DocumentError::invalidArchive("repeated " + place());

  bool isStarted = false;
  eachChild(row, Tag::row, [&](const NamespaceScope& cell, Tag) { writeCell(cell, attributes, isStarted); });
  column_ = 0;
  if (!isStarted && attributes.isSet(Attribute::hidden)) {
    startRow(attributes);
    isStarted = true;
  }
  if (isStarted) {
    tools_.writer.end(Tag::row);
  } else {
    tools_.findings.add(CleaningKind::emptyRows);
  }
}

void WorksheetCleaner::startRow(const KeptAttributes& row) {
  PartWriter& writer = tools_.writer;
  writer.start(Tag::row);
  writer.attribute(Attribute::position, row_);
  if (row.isSet(Attribute::hidden)) writer.attribute(Attribute::hidden, "1");
  const auto height = row[Attribute::height];
  if (height) writer.attribute(Attribute::height, *height);
  if (height && row.isSet(Attribute::customHeight)) writer.attribute(Attribute::customHeight, "1");
}

/// The address of a cell, which must be new and in the current row.
CellAddress WorksheetCleaner::position(const KeptAttributes& cell) {
  const auto reference = cell[Attribute::position];
  if (!reference) tools_.findings.add(CleaningKind::impliedPositions);
  CellAddress address{.column = column_ + 1, .row = row_};
  if (reference) {
    const auto plain = plainCellOf(*reference);
    address = plain ? *plain : CellAddress::parse(*reference);
  }
  if (address.row != row_ || address.column > CellAddress::maximumColumn) {
    throw DocumentError::invalidArchive("cell " + address.name() + " in row " + std::to_string(row_) +
                                        " of " + place_);
  }
  column_ = address.column;
  if (!identities_.isNewCellInRow(column_)) throw DocumentError::invalidArchive("repeated " + place());
  return address;
}

void WorksheetCleaner::writeCell(const NamespaceScope& cell, const KeptAttributes& row, bool& isRowStarted) {
  const KeptAttributes attributes(cell, Tag::cell, tools_.findings);
  if (attributes.refused() == Attribute::position) {
    column_ = 0;
    refuseAttribute(Attribute::position, "a cell in " + place());
  }
  const CellAddress address = position(attributes);
  if (attributes.refused()) refuseAttribute(*attributes.refused(), place());
  if (cell.element().attribute("vm")) tools_.findings.add(CleaningKind::richValues);
  if (cell.element().attribute("cm")) tools_.findings.add(CleaningKind::cellMetadata);

  CellParts parts;
  eachChild(cell, Tag::cell, [&](const NamespaceScope& child, Tag tag) {
    if (tag == Tag::formula) parts.formula = child.element();
    if (tag == Tag::value) parts.value = child.element();
    if (tag == Tag::inlineString) parts.inlineString = child.element();
    checkChildren(child, tag);
  });
  if (!parts.formula && !(parts.value && parts.value->hasContent()) &&
      !(parts.inlineString && parts.inlineString->hasContent())) {
    tools_.findings.add(CleaningKind::emptyCells);
    return;
  }

  CleanedSheet& counts = tools_.findings.sheet();
  if (++counts.cells > maximumWorksheetCells)
    throw DocumentError::resourceLimit("more than 50,000 cells in " + place_);
  if (tools_.removesMerges) cells_.push_back(address);
  if (!std::exchange(isRowStarted, true)) startRow(row);

  PartWriter& writer = tools_.writer;
  writer.start(Tag::cell);
  writer.attribute(Attribute::position, address.name());
  if (const auto style = attributes[Attribute::style]) {
    writer.attribute(Attribute::style, *style);
    tools_.plainFormats.countCell(*xmlInteger(*style));
  }
  if (const auto type = attributes[Attribute::valueType]; type && !type->empty())
    writer.attribute(Attribute::valueType, *type);
  if (parts.formula) {
    ++counts.formulas;
    writeFormula(NamespaceScope(cell, *parts.formula));
  }
  if (parts.value) {
    writer.start(Tag::value);
    writeText(writer, parts.value->content(scratch_));
    writer.end(Tag::value);
  }
  if (parts.inlineString) {
    writer.start(Tag::inlineString);
    writeString(NamespaceScope(cell, *parts.inlineString), Tag::inlineString, main_, tools_.findings, writer,
                [this] { return place(); });
    writer.end(Tag::inlineString);
  }
  writer.end(Tag::cell);
}

void WorksheetCleaner::writeFormula(const NamespaceScope& formula) {
  const KeptAttributes attributes(formula, Tag::formula, tools_.findings);
  if (attributes.refused()) refuseAttribute(*attributes.refused(), place());
  std::string scratch;
  const std::string_view text = formula.element().content(scratch);
  const std::string_view type = attributes[Attribute::valueType].value_or("normal");
  if (type == "shared") {
    writeSharedFormula(attributes, text);
    return;
  }
  PartWriter& writer = tools_.writer;
  writer.start(Tag::formula);
  if (type != "normal") {
    writer.attribute(Attribute::valueType, type);
    if (const auto area = attributes[Attribute::reference])
      writer.attribute(Attribute::reference, areaName(*areaOf(*area)));
    for (const Attribute flag : {Attribute::isTwoDimensional, Attribute::isRow}) {
      if (attributes.isSet(flag)) writer.attribute(flag, "1");
    }
    for (const Attribute input : {Attribute::firstInput, Attribute::secondInput}) {
      if (const auto cell = attributes[input]) writer.attribute(input, areaOf(*cell)->first.name());
    }
  }
  writeText(writer, text);
  writer.end(Tag::formula);
  countUses(tools_.formulaUses.read(text));
}

/// A shared formula's text is stored once, in the first cell (the master). A later cell with a text and an
/// area is a new master. A later cell with only a text has a formula of its own.
void WorksheetCleaner::writeSharedFormula(const KeptAttributes& formula, std::string_view text) {
  PartWriter& writer = tools_.writer;
  const auto index = xmlInteger(formula[Attribute::sharedIndex]);
  const auto master = index ? masters_.find(*index) : masters_.end();
  if (!text.empty()) {
    const FormulaUses uses = tools_.formulaUses.read(text);
    if (index && (master == masters_.end() || formula[Attribute::reference]))
      masters_.insert_or_assign(*index, Master{{column_, row_}, std::string(text), uses});
    writePlainFormula(text, uses);
    return;
  }
  if (master == masters_.end()) {
    writer.start(Tag::formula);
    writer.attribute(Attribute::valueType, "shared");
    writer.end(Tag::formula);
    tools_.findings.add(CleaningKind::sharedFormulasWithoutMaster);
    return;
  }

  const auto& [address, masterText, uses] = master->second;
  std::string moved;
  const bool fits =
      appendMoved(moved, masterText, row_ - address.row, column_ - address.column, OOXML::maximumXMLBytes);
  if (!fits || (moved.size() > maximumFormulaCharacters && Unicode::exceeds(moved, maximumFormulaCharacters)))
    throw DocumentError::resourceLimit("more than 8,192 characters of a formula in " + place());
  writer.setDetail(", written out up to cell " + CellAddress{column_, row_}.name());
  writer.requireCapacity(moved.size());
  writer.setDetail({});
  writePlainFormula(moved, uses);
  tools_.findings.add(CleaningKind::sharedFormulas);
}

void WorksheetCleaner::writePlainFormula(std::string_view text, const FormulaUses& uses) {
  tools_.writer.start(Tag::formula);
  writeText(tools_.writer, text);
  tools_.writer.end(Tag::formula);
  countUses(uses);
}

void WorksheetCleaner::countUses(const FormulaUses& uses) {
  Findings& findings = tools_.findings;
  findings.add(CleaningKind::otherWorkbookFormulas, uses.otherWorkbooks ? 1 : 0);
  findings.add(CleaningKind::definedNameFormulas, uses.definedNames ? 1 : 0);
  findings.add(CleaningKind::tableFormulas, uses.tables ? 1 : 0);
  findings.add(CleaningKind::droppedSheetFormulas, uses.droppedSheets ? 1 : 0);
  findings.add(CleaningKind::outwardFormulas, uses.outside ? 1 : 0);
}

void WorksheetCleaner::writeMerges() {
  if (merges_.empty()) return;
  if (tools_.removesMerges) {
    tools_.findings.add(CleaningKind::mergedAreas, static_cast<std::int64_t>(merges_.size()));
    tools_.findings.add(CleaningKind::coveredCells, countCoveredCells(std::move(merges_), std::move(cells_)));
    return;
  }
  tools_.writer.start(Tag::mergeCells);
  for (const CellRange& area : merges_) {
    tools_.writer.start(Tag::mergeCell);
    tools_.writer.attribute(Attribute::reference, areaName(area));
    tools_.writer.end(Tag::mergeCell);
  }
  tools_.writer.end(Tag::mergeCells);
}

}  // namespace zelvo::Cleaning
