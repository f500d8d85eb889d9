#include "DocumentRuntime/Workbook/WorkbookReader.hpp"

#include <algorithm>
#include <utility>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/Workbook/CellReader.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"

namespace zelvo {
namespace {

std::string_view lastPathComponent(std::string_view path) {
  if (path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);  // npos + 1 is 0: the whole name
}

}  // namespace

/// The parts as the gate passes them: in the order of their names, not of the rules.
struct WorkbookReader::PassedParts {
  std::optional<Deferred<WorkbookStructure>> structure;
  std::optional<Deferred<RelationshipTargets>> relationships;
  std::optional<Deferred<SharedStrings>> sharedStrings;
  std::optional<Deferred<CellStyles>> styles;
  std::vector<WorksheetPart> worksheets;
  OOXML::KeptTrees worksheetTrees;

  explicit PassedParts(std::size_t keptTreeBytes) : worksheetTrees(keptTreeBytes) {}

  void visit(std::string_view name, XMLTree& tree) {
    const XMLNode root = tree.root();
    if (name == WorkbookParts::workbook) {
      structure = Deferred<WorkbookStructure>::of([&] { return WorkbookStructure::read(tree); });
    }
    if (name == WorkbookParts::relationships) read(relationships, root);
    if (name == WorkbookParts::sharedStrings) read(sharedStrings, root);
    if (name == WorkbookParts::styles) read(styles, root);
    if (root.name() != "worksheet") return;
    worksheets.push_back(
        {std::string(name), Deferred<WorksheetFacts>::of([&] { return WorksheetFacts::read(root); })});
    worksheetTrees.keep(name, tree);
  }

 private:
  template <typename Value>
  static void read(std::optional<Deferred<Value>>& outcome, XMLNode root) {
    outcome = Deferred<Value>::of([&] { return Value::read(root); });
  }
};

WorkbookReader::WorkbookReader(ByteBuffer data, std::string_view sourceName, const std::stop_token& stop,
                               std::size_t keptTreeBytes) {
  identify(data.view(), sourceName);
  PartMap parts = BoundedZIP::read(data.view(), stop);
  data = {};
  open(std::move(parts), stop, keptTreeBytes);
}

WorkbookReader::WorkbookReader(ByteView data, std::string_view sourceName, const std::stop_token& stop) {
  identify(data, sourceName);
  open(BoundedZIP::read(data, stop), stop, OOXML::KeptTrees::defaultBudgetBytes);
}

void WorkbookReader::identify(ByteView data, std::string_view sourceName) {
  if (sourceName.size() > maximumSourceNameBytes) throw DocumentError::resourceLimit("source name");
  sourceName_ = lastPathComponent(sourceName);
  sourceSHA256_ = OOXML::hash(data);
}

void WorkbookReader::open(PartMap parts, const std::stop_token& stop, std::size_t keptTreeBytes) {
  PassedParts passed = vetParts(std::move(parts), stop, keptTreeBytes);
  if (!passed.structure || !passed.relationships)
    throw DocumentError::unsupported(Refusal::workbookStructure);
  WorkbookStructure structure = passed.structure->take();
  uses1904Dates_ = structure.uses1904Dates;
  calculationMode_ = std::move(structure.calculationMode);
  sheets_ = listSheets(structure, passed.relationships->get());
  if (passed.sharedStrings) sharedStrings_ = passed.sharedStrings->take();
  if (passed.styles) styles_ = passed.styles->take();
  worksheets_ = std::move(passed.worksheets);
  worksheetTrees_ = std::move(passed.worksheetTrees);
}

WorkbookReader::PassedParts WorkbookReader::vetParts(PartMap parts, const std::stop_token& stop,
                                                     std::size_t keptTreeBytes) {
  PassedParts passed(keptTreeBytes);
  parts_ = OOXML::vetted(
      std::move(parts), {}, [&](std::string_view name, XMLTree& tree) { passed.visit(name, tree); }, stop);
  return passed;
}

WorkbookInspection WorkbookReader::inspection() const {
  WorkbookInspection inspection;
  inspection.sourceName = sourceName_;
  inspection.sourceSHA256 = sourceSHA256_;
  for (const Sheet& sheet : sheets_) {
    const WorksheetFacts& facts = partOf(sheet).facts.get();
    inspection.sheets.push_back(
        {.name = sheet.name,
         .hidden = sheet.hidden,
         .populatedRange = facts.populatedRange ? std::optional(facts.populatedRange->name()) : std::nullopt,
         .populatedCellCount = facts.populatedCellCount,
         .formulaCellCount = facts.formulaCellCount,
         .formulasMissingCache = facts.formulasMissingCache,
         .hasHiddenRowsOrColumns = facts.hasHiddenRowsOrColumns,
         .hasAutoFilter = facts.hasAutoFilter});
  }
  inspection.dateSystem = uses1904Dates_ ? "1904" : "1900";
  inspection.calculationMode = calculationMode_;
  inspection.warnings = {"Reads the saved file snapshot. Unsaved Office edits are not included.",
                         "Formula caches are never treated as freshly recalculated values."};
  return inspection;
}

WorkbookReader::Worksheet WorkbookReader::worksheet(std::string_view name) const {
  constexpr CellRange wholeSheet{
      .first = {}, .last = {.column = CellAddress::maximumColumn, .row = CellAddress::maximumRow}};
  return {*this, visibleSheet(name), wholeSheet};
}

SourceTable WorkbookReader::table(const TableSelection& selection,
                                  const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                  const std::stop_token& stop) const {
  const Sheet& sheet = visibleSheet(selection.sheetName);
  const CellRange range = TableExtraction::selectedRange(selection);
  return Worksheet(*this, sheet, range).table(range, selection, acceptedEmptyFormulaCells, stop);
}

const Sheet& WorkbookReader::visibleSheet(std::string_view name) const {
  const auto sheet = std::ranges::find(sheets_, name, &Sheet::name);
  if (sheet == sheets_.end() || sheet->hidden) {
    throw DocumentError::invalidSelection(Refusal::unknownSheet);
  }
  return *sheet;
}

const WorkbookReader::WorksheetPart& WorkbookReader::partOf(const Sheet& sheet) const {
  if (!parts_.contains(sheet.path)) throw DocumentError::invalidArchive("missing worksheet");
  // The gate passes parts in the order of their names, so the list is sorted.
  const auto found = std::ranges::lower_bound(worksheets_, sheet.path, {}, &WorksheetPart::name);
  if (found == worksheets_.end() || found->name != sheet.path)
    throw DocumentError::unsupported(Refusal::worksheetType);
  return *found;
}

WorkbookReader::Worksheet::Worksheet(const WorkbookReader& workbook, const Sheet& sheet,
                                     const CellRange& area)
    : workbook_(workbook),
      sheet_(sheet),
      part_(workbook.partOf(sheet)),
      facts_(part_.facts.get()),
      contents_(workbook.worksheetTrees_.root(part_.name, *workbook.parts_.find(part_.name), fallback_),
                area) {}

SourceTable WorkbookReader::Worksheet::table(const TableSelection& selection,
                                             const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                             const std::stop_token& stop) const {
  return table(TableExtraction::selectedRange(selection), selection, acceptedEmptyFormulaCells, stop);
}

SourceTable WorkbookReader::Worksheet::table(const CellRange& range, const TableSelection& selection,
                                             const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                             const std::stop_token& stop) const {
  const CellReader cells(workbook_.sharedStrings_, workbook_.styles_, workbook_.uses1904Dates_);
  SourceTable table =
      TableExtraction::read(contents_, range, selection, cells, acceptedEmptyFormulaCells, stop);
  table.sourceName = workbook_.sourceName_;
  table.sourceSHA256 = workbook_.sourceSHA256_;
  table.sheetName = sheet_.name;
  table.selectedRange = range.name();
  return table;
}

}  // namespace zelvo
