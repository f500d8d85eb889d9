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
    throw DocumentError::unsupported(RefusalDetail::workbookStructure);
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

SourceTable WorkbookReader::table(const TableSelection& selection,
                                  const std::set<CellAddress>& acceptedEmptyFormulaCells,
                                  const std::stop_token& stop) const {
  const auto sheet = std::ranges::find(sheets_, selection.sheetName, &Sheet::name);
  if (sheet == sheets_.end() || sheet->hidden) {
    throw DocumentError::invalidSelection(RefusalDetail::unknownSheet);
  }
  const CellRange range = TableExtraction::selectedRange(selection);
  const WorksheetPart& part = partOf(*sheet);
  static_cast<void>(part.facts.get());  // throws the error of the sheet
  std::optional<XMLTree> fallback;
  const XMLNode worksheet = worksheetTrees_.root(part.name, *parts_.find(part.name), fallback);

  SourceTable table =
      TableExtraction::read(worksheet, range, selection, CellReader(sharedStrings_, styles_, uses1904Dates_),
                            acceptedEmptyFormulaCells, stop);
  table.sourceName = sourceName_;
  table.sourceSHA256 = sourceSHA256_;
  table.sheetName = sheet->name;
  table.selectedRange = range.name();
  return table;
}

const WorkbookReader::WorksheetPart& WorkbookReader::partOf(const Sheet& sheet) const {
  if (!parts_.contains(sheet.path)) throw DocumentError::invalidArchive("missing worksheet");
  // The gate passes parts in the order of their names, so the list is sorted.
  const auto found = std::ranges::lower_bound(worksheets_, sheet.path, {}, &WorksheetPart::name);
  if (found == worksheets_.end() || found->name != sheet.path)
    throw DocumentError::unsupported(RefusalDetail::worksheetType);
  return *found;
}

}  // namespace zelvo
